// A line plot of one history as a self-contained SVG file.
#pragma once

#include <string>
#include <vector>

namespace respcore::cli {

struct PlotText {
  std::string title;     // first line of the title
  std::string subtitle;  // second line, smaller
  std::string x_label;
  std::string y_label;
};

// The SVG document of VALUES over steps 1..n.
std::string svg_line_plot(const std::vector<double>& values, const PlotText& text);

// Writes it to PATH; throws CliError if the file cannot be written.
void write_svg_line_plot(const std::string& path, const std::vector<double>& values,
                         const PlotText& text);

// Ticks for the range [LO, HI]: round numbers 1, 2 or 5 times a power of
// ten, about TARGET of them, covering the range; no closer than MIN_STEP.
std::vector<double> nice_ticks(double lo, double hi, int target, double min_step = 0.0);

}  // namespace respcore::cli
