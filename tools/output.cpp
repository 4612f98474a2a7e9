// Tables, CSV and JSON of the tool's results.
#include "output.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "cli_error.hpp"

namespace respcore::cli {

namespace {

std::string fixed_width(double v, int width) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%*.6g", width, v);
  return buf;
}

std::string pad_left(const std::string& s, size_t width) {
  return s.size() >= width ? s : std::string(width - s.size(), ' ') + s;
}

std::string json_number(double v) { return std::isfinite(v) ? number_text(v) : "null"; }

void table_header(std::ostream& out, const QueryInfo& q) {
  out << "# archive " << q.archive << " (" << q.product << "), case " << q.hist_case;
  if (!q.storage.empty()) out << " (" << q.storage << " storage)";
  out << "\n";
  out << "# " << q.family << ", component " << q.component << " (" << q.component_number << ")";
  if (!q.component_meaning.empty()) out << ": " << q.component_meaning;
  out << "\n";
  std::string notes;
  if (!q.motion.empty()) notes += q.motion + " motion";
  if (q.mode > 0) notes += std::string(notes.empty() ? "" : ", ") + "mode " + std::to_string(q.mode) + " alone";
  notes += std::string(notes.empty() ? "" : ", ") + (q.global ? "global axes" : "local axes");
  out << "# " << notes << "\n";
}

void json_info(std::ostream& out, const QueryInfo& q) {
  out << "\"archive\": " << json_string(q.archive) << ", \"product\": " << json_string(q.product)
      << ", \"family\": " << json_string(q.family) << ", \"elem_type\": " << q.elem_type
      << ", \"case\": " << q.hist_case << ", \"storage\": " << json_string(q.storage)
      << ", \"component\": {\"number\": " << q.component_number
      << ", \"name\": " << json_string(q.component) << ", \"meaning\": " << json_string(q.component_meaning)
      << "}, \"mode\": " << q.mode << ", \"global\": " << (q.global ? "true" : "false");
  if (!q.motion.empty()) out << ", \"motion\": " << json_string(q.motion);
}

void json_values(std::ostream& out, const std::vector<double>& v) {
  out << "[";
  for (size_t i = 0; i < v.size(); ++i) out << (i ? ", " : "") << json_number(v[i]);
  out << "]";
}

}  // namespace

Format parse_format(const std::string& text) {
  if (text == "table") return Format::Table;
  if (text == "csv") return Format::Csv;
  if (text == "json") return Format::Json;
  throw usage_error("unknown format '" + text + "' (table, csv or json)");
}

std::string number_text(double v) {
  if (std::isnan(v)) return "nan";
  if (std::isinf(v)) return v > 0 ? "inf" : "-inf";
  char buf[64];
  const auto res = std::to_chars(buf, buf + sizeof buf, v);
  return std::string(buf, res.ptr);
}

std::string json_string(const std::string& s) {
  std::string out = "\"";
  for (const char ch : s) {
    const auto c = static_cast<unsigned char>(ch);
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\u%04x", c);
          out += buf;
        } else {
          out.push_back(ch);
        }
    }
  }
  return out + "\"";
}

std::string csv_field(const std::string& s) {
  if (s.find_first_of(",\"\n\r") == std::string::npos) return s;
  std::string out = "\"";
  for (char c : s) {
    if (c == '"') out += "\"\"";
    else out.push_back(c);
  }
  return out + "\"";
}

void print_history(std::ostream& out, const HistoryResult& r, Format f, int every) {
  const auto& v = r.values;
  switch (f) {
    case Format::Table: {
      table_header(out, r.info);
      out << "# item " << r.item.serial << " (number " << r.item.number << "), " << v.size() << " steps\n";
      out << pad_left("step", 8) << pad_left("value", 16) << "\n";
      const size_t stride = static_cast<size_t>(std::max(every, 1));
      for (size_t s = 0; s < v.size(); s += stride) {
        out << pad_left(std::to_string(s + 1), 8) << fixed_width(v[s], 16) << "\n";
      }
      if (!v.empty()) {
        size_t imax = 0, imin = 0;
        for (size_t s = 1; s < v.size(); ++s) {
          if (v[s] > v[imax]) imax = s;
          if (v[s] < v[imin]) imin = s;
        }
        out << "# largest " << number_text(v[imax]) << " at step " << imax + 1 << ", smallest "
            << number_text(v[imin]) << " at step " << imin + 1 << "\n";
      }
      break;
    }
    case Format::Csv:
      out << "step," << csv_field(r.info.component) << "\n";
      for (size_t s = 0; s < v.size(); ++s) out << s + 1 << "," << number_text(v[s]) << "\n";
      break;
    case Format::Json:
      out << "{";
      json_info(out, r.info);
      out << ", \"item\": {\"serial\": " << r.item.serial << ", \"number\": " << r.item.number
          << "}, \"steps\": " << v.size() << ", \"values\": ";
      json_values(out, v);
      out << "}\n";
      break;
  }
}

void print_snapshot(std::ostream& out, const SnapshotResult& r, Format f) {
  switch (f) {
    case Format::Table: {
      table_header(out, r.info);
      out << "# step " << r.step << ", " << r.items.size() << " items\n";
      out << pad_left("serial", 8) << pad_left("number", 8);
      for (const auto& p : r.points) out << pad_left(p, 16);
      out << "\n";
      for (size_t k = 0; k < r.items.size(); ++k) {
        out << pad_left(std::to_string(r.items[k].serial), 8) << pad_left(std::to_string(r.items[k].number), 8);
        for (double v : r.values[k]) out << fixed_width(v, 16);
        out << "\n";
      }
      break;
    }
    case Format::Csv:
      out << "serial,number";
      for (const auto& p : r.points) out << "," << csv_field(p);
      out << "\n";
      for (size_t k = 0; k < r.items.size(); ++k) {
        out << r.items[k].serial << "," << r.items[k].number;
        for (double v : r.values[k]) out << "," << number_text(v);
        out << "\n";
      }
      break;
    case Format::Json:
      out << "{";
      json_info(out, r.info);
      out << ", \"step\": " << r.step << ", \"points\": [";
      for (size_t p = 0; p < r.points.size(); ++p) out << (p ? ", " : "") << json_string(r.points[p]);
      out << "], \"items\": [";
      for (size_t k = 0; k < r.items.size(); ++k) {
        out << (k ? ", " : "") << "{\"serial\": " << r.items[k].serial << ", \"number\": " << r.items[k].number
            << ", \"values\": ";
        json_values(out, r.values[k]);
        out << "}";
      }
      out << "]}\n";
      break;
  }
}

void print_envelope(std::ostream& out, const EnvelopeResult& r, Format f) {
  auto step_of = [&](size_t k, int e) { return (e == 0 ? r.step_max : r.step_min).at(k); };
  switch (f) {
    case Format::Table: {
      table_header(out, r.info);
      out << "# over " << r.steps << " steps: ";
      if (r.columns.size() > 1) out << "all components at the step of the largest and of the smallest " << r.info.component << "\n";
      else out << "the largest and the smallest value, and its step\n";
      out << pad_left(r.node ? "node" : "serial", 8) << pad_left("extreme", 9) << pad_left("step", 8);
      for (const auto& c : r.columns) out << pad_left(c, 16);
      out << "\n";
      for (size_t k = 0; k < r.items.size(); ++k) {
        for (int e = 0; e < 2; ++e) {
          out << pad_left(std::to_string(r.node ? r.items[k].number : r.items[k].serial), 8)
              << pad_left(e == 0 ? "max" : "min", 9) << pad_left(std::to_string(step_of(k, e)), 8);
          for (double v : (e == 0 ? r.at_max : r.at_min)[k]) out << fixed_width(v, 16);
          out << "\n";
        }
      }
      break;
    }
    case Format::Csv:
      out << "serial,number,extreme,step";
      for (const auto& c : r.columns) out << "," << csv_field(c);
      out << "\n";
      for (size_t k = 0; k < r.items.size(); ++k) {
        for (int e = 0; e < 2; ++e) {
          out << r.items[k].serial << "," << r.items[k].number << "," << (e == 0 ? "max" : "min") << "," << step_of(k, e);
          for (double v : (e == 0 ? r.at_max : r.at_min)[k]) out << "," << number_text(v);
          out << "\n";
        }
      }
      break;
    case Format::Json:
      out << "{";
      json_info(out, r.info);
      out << ", \"steps\": " << r.steps << ", \"components\": [";
      for (size_t c = 0; c < r.columns.size(); ++c) out << (c ? ", " : "") << json_string(r.columns[c]);
      out << "], \"items\": [";
      for (size_t k = 0; k < r.items.size(); ++k) {
        out << (k ? ", " : "") << "{\"serial\": " << r.items[k].serial << ", \"number\": " << r.items[k].number
            << ", \"max_step\": " << step_of(k, 0) << ", \"min_step\": " << step_of(k, 1) << ", \"max\": ";
        json_values(out, r.at_max[k]);
        out << ", \"min\": ";
        json_values(out, r.at_min[k]);
        out << "}";
      }
      out << "]}\n";
      break;
  }
}

}  // namespace respcore::cli
