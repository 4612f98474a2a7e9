// SVG line plot: frame, grid, ticks with round values, axis labels, a title
// and the history as one polyline. Non-finite values break the line.
#include "svg_plot.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "cli_error.hpp"

namespace respcore::cli {

namespace {

constexpr double kWidth = 900, kHeight = 500;
constexpr double kLeft = 90, kRight = 30, kTop = 70, kBottom = 60;

std::string esc(const std::string& s) {
  std::string out;
  for (const char c : s) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\'': out += "&apos;"; break;
      default:
        // Control characters are not allowed in XML 1.0.
        if (static_cast<unsigned char>(c) >= 0x20 || c == '\t') out.push_back(c);
    }
  }
  return out;
}

std::string num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

std::string tick_label(double v, double step) {
  if (std::abs(v) < step * 1e-9) v = 0;
  char buf[32];
  const double a = std::max(std::abs(v), step);
  if (a >= 1e6 || a < 1e-3) {
    std::snprintf(buf, sizeof buf, "%.3g", v);
  } else {
    const int decimals = std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  }
  return buf;
}

}  // namespace

std::vector<double> nice_ticks(double lo, double hi, int target, double min_step) {
  std::vector<double> ticks;
  if (!(hi > lo) || !std::isfinite(lo) || !std::isfinite(hi)) return ticks;
  const double raw = (hi - lo) / std::max(target, 1);
  const double mag = std::pow(10.0, std::floor(std::log10(raw)));
  double step = mag;
  for (double f : {1.0, 2.0, 5.0, 10.0}) {
    if (f * mag >= raw) {
      step = f * mag;
      break;
    }
  }
  step = std::max(step, min_step);
  const double start = std::ceil(lo / step - 1e-9) * step;
  for (double t = start; t <= hi + step * 1e-9; t += step) ticks.push_back(std::abs(t) < step * 1e-9 ? 0.0 : t);
  return ticks;
}

std::string svg_line_plot(const std::vector<double>& values, const PlotText& text) {
  const size_t n = values.size();
  double lo = 0, hi = 0;
  bool any = false;
  for (double v : values) {
    if (!std::isfinite(v)) continue;
    if (!any) lo = hi = v;
    lo = std::min(lo, v);
    hi = std::max(hi, v);
    any = true;
  }
  if (!any || hi - lo <= std::max(std::abs(hi), std::abs(lo)) * 1e-12) {
    const double pad = std::max(std::abs(hi), 1.0) * 0.5;
    lo -= pad;
    hi += pad;
  }
  // A little room above and below, then round to the ticks.
  const double margin = (hi - lo) * 0.05;
  std::vector<double> yt = nice_ticks(lo - margin, hi + margin, 6);
  if (yt.size() >= 2) {
    const double step = yt[1] - yt[0];
    lo = std::min(lo - margin, yt.front());
    hi = std::max(hi + margin, yt.back());
    if (yt.front() > lo + 1e-12 * step) yt.insert(yt.begin(), yt.front() - step);
    if (yt.back() < hi - 1e-12 * step) yt.push_back(yt.back() + step);
    lo = yt.front();
    hi = yt.back();
  }
  const double x_lo = 1, x_hi = std::max<double>(static_cast<double>(n), 2.0);
  std::vector<double> xt = nice_ticks(x_lo, x_hi, 8, 1.0);  // whole steps

  const double pw = kWidth - kLeft - kRight, ph = kHeight - kTop - kBottom;
  auto X = [&](double x) { return kLeft + (x - x_lo) / (x_hi - x_lo) * pw; };
  auto Y = [&](double y) { return kTop + (hi - y) / (hi - lo) * ph; };

  std::ostringstream s;
  s << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  s << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kWidth << "\" height=\"" << kHeight
    << "\" viewBox=\"0 0 " << kWidth << " " << kHeight << "\" font-family=\"sans-serif\">\n";
  s << "<title>" << esc(text.title) << "</title>\n";
  s << "<rect x=\"0\" y=\"0\" width=\"" << kWidth << "\" height=\"" << kHeight << "\" fill=\"white\"/>\n";
  s << "<text x=\"" << kWidth / 2 << "\" y=\"28\" text-anchor=\"middle\" font-size=\"17\">" << esc(text.title) << "</text>\n";
  if (!text.subtitle.empty()) {
    s << "<text x=\"" << kWidth / 2 << "\" y=\"50\" text-anchor=\"middle\" font-size=\"13\" fill=\"#444\">"
      << esc(text.subtitle) << "</text>\n";
  }

  // Grid and ticks.
  s << "<g stroke=\"#e2e2e2\" stroke-width=\"1\">\n";
  for (double t : yt) s << "<line x1=\"" << num(kLeft) << "\" y1=\"" << num(Y(t)) << "\" x2=\"" << num(kLeft + pw) << "\" y2=\"" << num(Y(t)) << "\"/>\n";
  for (double t : xt) s << "<line x1=\"" << num(X(t)) << "\" y1=\"" << num(kTop) << "\" x2=\"" << num(X(t)) << "\" y2=\"" << num(kTop + ph) << "\"/>\n";
  s << "</g>\n";
  if (lo < 0 && hi > 0) {
    s << "<line x1=\"" << num(kLeft) << "\" y1=\"" << num(Y(0)) << "\" x2=\"" << num(kLeft + pw) << "\" y2=\"" << num(Y(0))
      << "\" stroke=\"#999\" stroke-width=\"1\"/>\n";
  }
  s << "<rect x=\"" << num(kLeft) << "\" y=\"" << num(kTop) << "\" width=\"" << num(pw) << "\" height=\"" << num(ph)
    << "\" fill=\"none\" stroke=\"black\" stroke-width=\"1\"/>\n";
  s << "<g font-size=\"12\" fill=\"black\">\n";
  const double ystep = yt.size() >= 2 ? yt[1] - yt[0] : 1.0;
  for (double t : yt) {
    s << "<line x1=\"" << num(kLeft - 5) << "\" y1=\"" << num(Y(t)) << "\" x2=\"" << num(kLeft) << "\" y2=\"" << num(Y(t)) << "\" stroke=\"black\"/>\n";
    s << "<text x=\"" << num(kLeft - 8) << "\" y=\"" << num(Y(t) + 4) << "\" text-anchor=\"end\">" << esc(tick_label(t, ystep)) << "</text>\n";
  }
  const double xstep = xt.size() >= 2 ? xt[1] - xt[0] : 1.0;
  for (double t : xt) {
    s << "<line x1=\"" << num(X(t)) << "\" y1=\"" << num(kTop + ph) << "\" x2=\"" << num(X(t)) << "\" y2=\"" << num(kTop + ph + 5) << "\" stroke=\"black\"/>\n";
    s << "<text x=\"" << num(X(t)) << "\" y=\"" << num(kTop + ph + 20) << "\" text-anchor=\"middle\">" << esc(tick_label(t, xstep)) << "</text>\n";
  }
  s << "</g>\n";
  s << "<text x=\"" << num(kLeft + pw / 2) << "\" y=\"" << num(kHeight - 15) << "\" text-anchor=\"middle\" font-size=\"14\">"
    << esc(text.x_label) << "</text>\n";
  s << "<text x=\"20\" y=\"" << num(kTop + ph / 2) << "\" text-anchor=\"middle\" font-size=\"14\" transform=\"rotate(-90 20 "
    << num(kTop + ph / 2) << ")\">" << esc(text.y_label) << "</text>\n";

  // The history, one polyline per run of finite values.
  s << "<g fill=\"none\" stroke=\"#1f5fa8\" stroke-width=\"1.3\" stroke-linejoin=\"round\">\n";
  std::string pts;
  auto flush = [&] {
    if (!pts.empty()) s << "<polyline points=\"" << pts << "\"/>\n";
    pts.clear();
  };
  for (size_t i = 0; i < n; ++i) {
    if (!std::isfinite(values[i])) {
      flush();
      continue;
    }
    if (!pts.empty()) pts.push_back(' ');
    pts += num(X(static_cast<double>(i + 1))) + "," + num(Y(values[i]));
  }
  flush();
  s << "</g>\n";
  // Few steps: mark each one, so that a single step shows as well.
  if (n <= 60) {
    s << "<g fill=\"#1f5fa8\">\n";
    for (size_t i = 0; i < n; ++i) {
      if (std::isfinite(values[i])) {
        s << "<circle cx=\"" << num(X(static_cast<double>(i + 1))) << "\" cy=\"" << num(Y(values[i])) << "\" r=\"2.5\"/>\n";
      }
    }
    s << "</g>\n";
  }
  s << "</svg>\n";
  return s.str();
}

void write_svg_line_plot(const std::string& path, const std::vector<double>& values,
                         const PlotText& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) throw CliError("cannot write the plot " + path);
  out << svg_line_plot(values, text);
  out.flush();
  if (!out) throw CliError("cannot write the plot " + path);
}

}  // namespace respcore::cli
