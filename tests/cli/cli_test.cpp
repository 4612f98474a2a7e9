// The respcore tool end to end on the demo archive: every subcommand, every
// output format read back by a strict parser and compared with the kernel
// run in this process, component names against numbers, the SVG plot as
// XML, and the error paths with their messages and exit codes.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"
#include "support/temp_dir.hpp"
#include "text_formats.hpp"

#ifdef RESPCORE_TOOL_PATH

namespace respcore::testing {
namespace {

namespace fs = std::filesystem;
using formats::Json;

struct ToolRun {
  int code = -1;
  std::string out, err;
};

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

class Tool {
 public:
  Tool() {
    base_ = dir_.file("demo/frame");
    const ToolRun r = run("demo " + dir_.file("demo"));
    if (r.code != 0) throw std::runtime_error("respcore demo failed: " + r.err);
  }
  const std::string& base() const { return base_; }
  TempDir& dir() { return dir_; }

  ToolRun run(const std::string& args) const {
    const std::string out = dir_.file("stdout.txt"), err = dir_.file("stderr.txt");
    const std::string cmd = std::string(RESPCORE_TOOL_PATH) + " " + args + " >" + out + " 2>" + err + " </dev/null";
    const int st = std::system(cmd.c_str());
    ToolRun r;
    r.code = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
    r.out = slurp(out);
    r.err = slurp(err);
    return r;
  }

 private:
  TempDir dir_;
  std::string base_;
};

Tool& tool() {
  static Tool t;
  return t;
}

std::vector<double> kernel_values(int elem_type, int comp, int serial, int steps, int hist_case = 1,
                                  int step_no = 1) {
  Kernel k;
  Request r;
  r.base = tool().base();
  r.elem_type = elem_type;
  r.result_comp = comp;
  r.hist_case = hist_case;
  r.num_steps = steps;
  r.step_no = step_no;
  r.axis_flag = 0;
  r.serials = {serial};
  r.elements = {serial};
  const Result res = k.run(r);
  EXPECT_EQ(res.status, 0);
  return res.values;
}

std::vector<double> csv_values(const std::string& text, size_t column = 1) {
  const auto rows = formats::parse_csv(text);
  std::vector<double> v;
  for (size_t i = 1; i < rows.size(); ++i) v.push_back(std::stod(rows[i].at(column)));
  return v;
}

std::vector<double> json_numbers(const Json& a) {
  std::vector<double> v;
  for (const Json& x : a.items) {
    EXPECT_EQ(x.kind, Json::Number);
    v.push_back(x.num);
  }
  return v;
}

bool one_line(const std::string& s) {
  return !s.empty() && s.back() == '\n' && std::count(s.begin(), s.end(), '\n') == 1;
}

TEST(Cli, DemoWritesAnArchiveThatSectionsLists) {
  const ToolRun r = tool().run("sections " + tool().base());
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_TRUE(r.err.empty()) << r.err;
  for (const char* tag : {"HEAD", "THLG", "THIF", "MDSP", "MSHP", "NDSP", "BEAM", "TRUS", "GRMT", "ELMT", "MATL", "DMED"}) {
    EXPECT_NE(r.out.find(std::string("\n  ") + tag + " "), std::string::npos) << tag;
  }
  for (const char* ext : {".PA1", ".PA2", ".PAT2"}) EXPECT_NE(r.out.find(tool().base() + ext), std::string::npos);
  // The beam section holds the 18 columns and 21 beams, the truss section
  // the 8 braces, THIF the two cases.
  std::istringstream lines(r.out);
  std::string line;
  std::map<std::string, long> records;
  while (std::getline(lines, line)) {
    std::istringstream f(line);
    std::string tag;
    long serial, first, last, reclen, nrec;
    if (f >> tag >> serial >> first >> last >> reclen >> nrec) {
      EXPECT_EQ(nrec, last - first + 1);
      records[tag] = nrec;
    }
  }
  EXPECT_EQ(records["BEAM"], 39);
  EXPECT_EQ(records["TRUS"], 8);
  EXPECT_EQ(records["THIF"], 2);
}

TEST(Cli, SectionsFollowsChainedBlocksOfBothForms) {
  for (const DirectoryForm form : {DirectoryForm::Plain, DirectoryForm::Wide}) {
    const std::string base = tool().dir().file(form == DirectoryForm::Wide ? "wide/model" : "plain/model");
    fs::create_directories(fs::path(base).parent_path());
    ArchiveWriter w(base, "Q.L.D", form);
    w.first();
    for (int k = 1; k <= 25; ++k) w.second().add("S" + std::to_string(100 + k), k, 3 + k, k);
    w.direct(12).add(sections::DMED, 1, 8, 6);
    w.write();
    const ToolRun r = tool().run("sections " + base);
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find("archive " + base + " (Q.L.D), 3 files"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find(form == DirectoryForm::Wide ? "64-bit form" : "plain form"), std::string::npos);
    EXPECT_NE(r.out.find("2 directory blocks"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find(base + ".QAT12  (direct file 12)"), std::string::npos) << r.out;
    for (int k = 1; k <= 25; ++k) {
      std::istringstream lines(r.out.substr(r.out.find("S" + std::to_string(100 + k))));
      std::string tag;
      long serial, first, last, reclen, nrec;
      ASSERT_TRUE(lines >> tag >> serial >> first >> last >> reclen >> nrec);
      EXPECT_EQ(serial, k);
      EXPECT_EQ(reclen, 3 + k);
      EXPECT_EQ(nrec, k);
    }
  }
}

TEST(Cli, HistoryInEveryFormatMatchesTheKernel) {
  const std::string q = "history " + tool().base() + " --type beam --item 3 --comp My-i";
  const std::vector<double> expect = kernel_values(13, 5, 3, 1000);

  const ToolRun csv = tool().run(q + " --format csv");
  ASSERT_EQ(csv.code, 0) << csv.err;
  const auto rows = formats::parse_csv(csv.out);
  ASSERT_EQ(rows.size(), 1001u);
  EXPECT_EQ(rows[0], (std::vector<std::string>{"step", "My-i"}));
  EXPECT_EQ(csv_values(csv.out), expect);  // shortest round-trip text: exact
  for (size_t s = 1; s < rows.size(); ++s) EXPECT_EQ(rows[s][0], std::to_string(s));

  const ToolRun js = tool().run(q + " -f json");
  ASSERT_EQ(js.code, 0) << js.err;
  const Json j = formats::parse_json(js.out);
  EXPECT_EQ(j["family"].str, "beam");
  EXPECT_EQ(j["elem_type"].num, 13);
  EXPECT_EQ(j["case"].num, 1);
  EXPECT_EQ(j["storage"].str, "modal");
  EXPECT_EQ(j["component"]["number"].num, 5);
  EXPECT_EQ(j["component"]["name"].str, "My-i");
  EXPECT_EQ(j["item"]["serial"].num, 3);
  EXPECT_EQ(j["steps"].num, 1000);
  EXPECT_EQ(json_numbers(j["values"]), expect);

  const ToolRun table = tool().run(q + " --every 10");
  ASSERT_EQ(table.code, 0) << table.err;
  std::istringstream lines(table.out);
  std::string line;
  size_t n = 0;
  while (std::getline(lines, line)) {
    if (line.empty() || line[0] == '#' || line.find("step") != std::string::npos) continue;
    std::istringstream f(line);
    size_t step;
    double v;
    ASSERT_TRUE(f >> step >> v) << line;
    EXPECT_EQ(step, 10 * n + 1);
    EXPECT_NEAR(v, expect[step - 1], 1e-5 * std::abs(expect[step - 1]) + 1e-12);
    ++n;
  }
  EXPECT_EQ(n, 100u);

  // The direct case, a shorter run, and absolute node motion.
  const ToolRun direct = tool().run(q + " --case 2 --steps 40 -f csv");
  ASSERT_EQ(direct.code, 0) << direct.err;
  EXPECT_EQ(csv_values(direct.out), kernel_values(13, 5, 3, 40, 2));
  const ToolRun absolute = tool().run("history " + tool().base() + " -t node-acceleration -i 20 -c y --absolute -f csv");
  ASSERT_EQ(absolute.code, 0) << absolute.err;
  EXPECT_EQ(csv_values(absolute.out), kernel_values(11, 2, 20, 1000, 1, 2));
}

TEST(Cli, ComponentNamesAndNumbersAgree) {
  for (const std::string family : {"beam", "truss", "node-displacement"}) {
    const ToolRun c = tool().run("components " + family + " -f json");
    ASSERT_EQ(c.code, 0) << c.err;
    const Json j = formats::parse_json(c.out);
    const int type = static_cast<int>(j["type"].num);
    // Rows and selectors are numbered from 1 without gaps.
    for (const char* table : {"rows", "selectors"}) {
      for (size_t i = 0; i < j[table].items.size(); ++i) EXPECT_EQ(j[table][i]["number"].num, static_cast<double>(i + 1));
    }
    // The CSV listing says the same.
    const ToolRun csv = tool().run("components " + family + " -f csv");
    const auto rows = formats::parse_csv(csv.out);
    ASSERT_EQ(rows.size(), 1 + j["rows"].items.size() + j["selectors"].items.size());
    for (size_t i = 0; i < j["rows"].items.size(); ++i) {
      EXPECT_EQ(rows[i + 1][1], std::to_string(i + 1));
      EXPECT_EQ(rows[i + 1][2], j["rows"][i]["name"].str);
    }
    // A history by name is the kernel's history of the row of that number.
    for (const Json& row : j["rows"].items) {
      const std::string q = "history " + tool().base() + " --type " + family + " --item 2 --steps 30 -f csv --comp ";
      const ToolRun by_name = tool().run(q + row["name"].str);
      ASSERT_EQ(by_name.code, 0) << by_name.err;
      EXPECT_EQ(csv_values(by_name.out), kernel_values(type, static_cast<int>(row["number"].num), 2, 30)) << row["name"].str;
    }
    // A snapshot by selector name holds the kernel's values of that selector
    // number, with the announced points.
    for (const Json& sel : j["selectors"].items) {
      const int number = static_cast<int>(sel["number"].num);
      const ToolRun by_name = tool().run("snapshot " + tool().base() + " --type " + family + " --items 1-3 --step 77 -f json --comp " + sel["name"].str);
      ASSERT_EQ(by_name.code, 0) << by_name.err;
      const Json a = formats::parse_json(by_name.out);
      ASSERT_EQ(a["points"].items.size(), sel["points"].items.size());
      const size_t m = sel["points"].items.size();
      for (int item = 1; item <= 3; ++item) {
        std::vector<double> expect;
        if (type >= 9 && type <= 11) {
          expect = {kernel_values(type, number, item, 77)[76]};
        } else {
          Kernel k;
          Request r;
          r.base = tool().base();
          r.elem_type = type;
          r.result_comp = number;
          r.request_mode = 2;
          r.step_no = 77;
          r.num_items = 1;
          r.axis_flag = 0;
          r.serials = {item};
          r.elements = {item};
          expect = k.run(r).values;
        }
        ASSERT_EQ(expect.size(), m);
        EXPECT_EQ(json_numbers(a["items"][static_cast<size_t>(item - 1)]["values"]), expect) << sel["name"].str;
      }
    }
    // Names and numbers reach the same component.
    const std::string q = "history " + tool().base() + " --type " + family + " --item 1 --steps 5 -f json --comp ";
    const Json last = j["rows"].items.back();
    const Json by_number = formats::parse_json(tool().run(q + std::to_string(static_cast<int>(last["number"].num))).out);
    EXPECT_EQ(by_number["component"]["name"].str, last["name"].str);
  }
  // The table listing names the beam's rows as the JSON does.
  const ToolRun t = tool().run("components beam");
  ASSERT_EQ(t.code, 0);
  EXPECT_NE(t.out.find("     5  My-i "), std::string::npos);
  EXPECT_NE(t.out.find("    27  corner1-i "), std::string::npos);
  const ToolRun all = tool().run("components -f json");
  EXPECT_EQ(formats::parse_json(all.out)["families"].items.size(), 14u);
}

TEST(Cli, SnapshotMatchesHistoriesAtTheStep) {
  const int step = 300;
  // Beams: end i and end j of N, and corner 1.
  for (const auto& [sel, row_i, row_j] : {std::tuple{"N", 1, 7}, std::tuple{"corner1", 27, 31}}) {
    const ToolRun r = tool().run("snapshot " + tool().base() + " -t beam -i 1-5,12:112 -c " + sel + " --step " + std::to_string(step) + " -f json");
    ASSERT_EQ(r.code, 0) << r.err;
    const Json j = formats::parse_json(r.out);
    EXPECT_EQ(j["step"].num, step);
    ASSERT_EQ(j["items"].items.size(), 6u);
    EXPECT_EQ(j["items"][5]["serial"].num, 12);
    EXPECT_EQ(j["items"][5]["number"].num, 112);
    EXPECT_EQ(j["points"][0].str, "end-i");
    for (size_t k = 0; k < 6; ++k) {
      const int serial = static_cast<int>(j["items"][k]["serial"].num);
      const auto v = json_numbers(j["items"][k]["values"]);
      ASSERT_EQ(v.size(), 2u);
      // A long history of one row is combined in another order than the
      // step's own products: the two agree to rounding of the row's scale.
      for (const auto& [value, row] : {std::pair{v[0], row_i}, std::pair{v[1], row_j}}) {
        const auto h = kernel_values(13, row, serial, step);
        double scale = 0.0;
        for (double x : h) scale = std::max(scale, std::abs(x));
        EXPECT_NEAR(value, h[step - 1], 1e-12 * scale);
      }
    }
  }
  // Node results at a step past the first, and a truss in CSV.
  const ToolRun nodes = tool().run("snapshot " + tool().base() + " -t node-velocity -i 7-9 -c y --step 250 -f csv");
  ASSERT_EQ(nodes.code, 0) << nodes.err;
  const auto rows = formats::parse_csv(nodes.out);
  ASSERT_EQ(rows.size(), 4u);
  EXPECT_EQ(rows[0], (std::vector<std::string>{"serial", "number", "value"}));
  for (int n = 7; n <= 9; ++n) EXPECT_DOUBLE_EQ(std::stod(rows[static_cast<size_t>(n - 6)][2]), kernel_values(10, 2, n, 250)[249]);
  const ToolRun truss = tool().run("snapshot " + tool().base() + " -t truss -i all -c s --step 400 -f csv");
  ASSERT_EQ(truss.code, 0) << truss.err;
  const auto trows = formats::parse_csv(truss.out);
  ASSERT_EQ(trows.size(), 9u);
  for (int k = 1; k <= 8; ++k) EXPECT_DOUBLE_EQ(std::stod(trows[static_cast<size_t>(k)][3]), kernel_values(12, 4, k, 400)[399]);
}

TEST(Cli, EnvelopeHoldsTheExtremesOfTheHistories) {
  const ToolRun r = tool().run("envelope " + tool().base() + " -t node-displacement -i 19-24 -c x -f json");
  ASSERT_EQ(r.code, 0) << r.err;
  const Json j = formats::parse_json(r.out);
  ASSERT_EQ(j["items"].items.size(), 6u);
  for (size_t k = 0; k < 6; ++k) {
    const int node = static_cast<int>(j["items"][k]["number"].num);
    std::vector<std::vector<double>> h;
    for (int c = 1; c <= 6; ++c) h.push_back(kernel_values(9, c, node, 1000));
    const auto mx = std::max_element(h[0].begin(), h[0].end()) - h[0].begin();
    const auto mn = std::min_element(h[0].begin(), h[0].end()) - h[0].begin();
    EXPECT_EQ(j["items"][k]["max_step"].num, static_cast<double>(mx + 1)) << "node " << node;
    EXPECT_EQ(j["items"][k]["min_step"].num, static_cast<double>(mn + 1)) << "node " << node;
    const auto at_max = json_numbers(j["items"][k]["max"]), at_min = json_numbers(j["items"][k]["min"]);
    for (size_t c = 0; c < 6; ++c) {
      EXPECT_DOUBLE_EQ(at_max[c], h[c][static_cast<size_t>(mx)]) << "node " << node << " comp " << c + 1;
      EXPECT_DOUBLE_EQ(at_min[c], h[c][static_cast<size_t>(mn)]) << "node " << node << " comp " << c + 1;
    }
  }
  const ToolRun csv = tool().run("envelope " + tool().base() + " -t node-displacement -i 19-24 -c x -f csv");
  ASSERT_EQ(csv.code, 0);
  EXPECT_EQ(formats::parse_csv(csv.out).size(), 13u);

  // An element's envelope is the extremes of its history and their first steps.
  const ToolRun b = tool().run("envelope " + tool().base() + " -t beam -i 2,5 -c My-j -f csv");
  ASSERT_EQ(b.code, 0) << b.err;
  const auto rows = formats::parse_csv(b.out);
  ASSERT_EQ(rows.size(), 5u);
  EXPECT_EQ(rows[0], (std::vector<std::string>{"serial", "number", "extreme", "step", "My-j"}));
  for (size_t i = 1; i < rows.size(); ++i) {
    const auto h = kernel_values(13, 11, std::stoi(rows[i][0]), 1000);
    const auto it = rows[i][2] == "max" ? std::max_element(h.begin(), h.end()) : std::min_element(h.begin(), h.end());
    EXPECT_EQ(std::stoi(rows[i][3]), it - h.begin() + 1) << i;
    EXPECT_EQ(std::stod(rows[i][4]), *it) << i;
  }
}

TEST(Cli, PlotIsAWellFormedSvgOfTheHistory) {
  const std::string svg = tool().dir().file("column.svg");
  const ToolRun r = tool().run("history " + tool().base() + " --type beam --item 1 --comp My-i --every 100 --plot " + svg);
  ASSERT_EQ(r.code, 0) << r.err;
  const std::string text = slurp(svg);
  const auto elements = formats::check_xml(text);
  ASSERT_FALSE(elements.empty());
  EXPECT_EQ(elements[0].name, "svg");
  EXPECT_EQ(elements[0].attrs.at("xmlns"), "http://www.w3.org/2000/svg");
  size_t points = 0, polylines = 0;
  std::string all_text, title;
  for (const auto& e : elements) {
    if (e.name == "polyline") {
      ++polylines;
      std::istringstream p(e.attrs.at("points"));
      std::string xy;
      while (p >> xy) {
        ++points;
        const size_t comma = xy.find(',');
        ASSERT_NE(comma, std::string::npos);
        const double x = std::stod(xy.substr(0, comma)), y = std::stod(xy.substr(comma + 1));
        EXPECT_TRUE(x >= 0 && x <= 900 && y >= 0 && y <= 500) << xy;
      }
    }
    if (e.name == "title") title = e.text;
    if (e.name == "text") all_text += e.text + "\n";
  }
  EXPECT_EQ(polylines, 1u);
  EXPECT_EQ(points, 1000u);
  EXPECT_NE(title.find("My-i"), std::string::npos);
  EXPECT_NE(all_text.find(tool().base()), std::string::npos);  // the archive
  EXPECT_NE(all_text.find("beam 1"), std::string::npos);       // the item
  EXPECT_NE(all_text.find("time step"), std::string::npos);    // the x axis
  // A second reader, where the machine has one.
  if (std::system("python3 -c 'pass' >/dev/null 2>&1") == 0) {
    EXPECT_EQ(std::system(("python3 -c 'import sys, xml.etree.ElementTree as E; E.parse(sys.argv[1])' " + svg).c_str()), 0);
    const std::string js = tool().dir().file("h.json");
    const ToolRun h = tool().run("history " + tool().base() + " -t truss -i 2 -c N-i -f json --steps 10");
    std::ofstream(js) << h.out;
    EXPECT_EQ(std::system(("python3 -c 'import sys, json; json.load(open(sys.argv[1]))' " + js).c_str()), 0);
  }
}

TEST(Cli, BadArgumentsGiveOneLineAndExitCodeTwo) {
  const std::string b = tool().base();
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"history " + b + " --type bem --item 1 --comp 5", "unknown type 'bem'"},
      {"history " + b + " --type beam --item 40 --comp 5", "item 40 is past the BEAM/3 section"},
      {"history " + b + " --type node-displacement --item 25 --comp x", "node 25 is past the NDSP/3 section"},
      {"history " + b + " --type beam --item 1 --comp Mq-i", "unknown component 'Mq-i' of beam"},
      {"history " + b + " --type beam --item 1 --comp 35", "row 35 is not one of beam's"},
      {"history " + b + " --type beam --item 1 --comp corner1", "is a snapshot selector here"},
      {"history " + b + " --type beam --item 1 --comp 5 --case 3", "case 3 is not in the archive"},
      {"history " + b + " --type beam --item 1 --comp 5 --steps 1001", "exceed the 1000 steps stored"},
      {"history " + b + " --type beam --item 0 --comp 5", "bad item '0'"},
      {"history " + b + " --type beam --item 1 --comp 5 -f xml", "unknown format 'xml'"},
      {"history " + b + " --type beam --comp 5", "--item is required"},
      {"history " + b + " --type beam --item 1 --comp 5 --colour red", "colour"},
      {"snapshot " + b + " --type beam --items 1-3 --comp N --step 0", "--step must be"},
      {"snapshot " + b + " --type truss --items 3-1 --comp N --step 2", "bad item range '3-1'"},
      {"envelope " + b + " --type beam --items 1 --comp N", "is a snapshot selector here"},
      {"envelope " + b + " --type node-velocity --items 1 --comp warp", "one of the six components"},
      {"history " + b + " --type beam --item 1 --comp 5 --product D.X.K", "cannot be named in a request"},
      {"history " + b + " --type truss --item 1 --comp N-i --absolute", "node results only"},
      {"", "subcommand is required"},
  };
  for (const auto& [args, message] : cases) {
    const ToolRun r = tool().run(args);
    EXPECT_EQ(r.code, 2) << args;
    EXPECT_TRUE(one_line(r.err)) << args << "\n" << r.err;
    EXPECT_EQ(r.err.rfind("respcore: ", 0), 0u) << r.err;
    EXPECT_NE(r.err.find(message), std::string::npos) << args << "\n" << r.err;
    EXPECT_TRUE(r.out.empty()) << args << "\n" << r.out;
  }
}

TEST(Cli, MissingAndBrokenArchivesGiveOneLineAndExitCodeOne) {
  const ToolRun missing = tool().run("history " + tool().dir().file("nothing") + " -t beam -i 1 -c 5");
  EXPECT_EQ(missing.code, 1);
  EXPECT_TRUE(one_line(missing.err)) << missing.err;
  EXPECT_NE(missing.err.find("no archive at " + tool().dir().file("nothing")), std::string::npos) << missing.err;
  const ToolRun no_family = tool().run("history " + tool().base() + " -t plate -i 1 -c 1");
  EXPECT_EQ(no_family.code, 1);
  EXPECT_NE(no_family.err.find("no plate results here"), std::string::npos) << no_family.err;

  // Copies of the archive, each broken in one way.
  auto copy = [&](const std::string& name) {
    const std::string base = tool().dir().file(name + "/frame");
    fs::create_directories(tool().dir().file(name));
    for (const char* ext : {".PA1", ".PA2", ".PAT2"}) fs::copy_file(tool().base() + ext, base + ext, fs::copy_options::overwrite_existing);
    return base;
  };
  auto poke = [](const std::string& path, std::streamoff at, const void* bytes, size_t n) {
    std::fstream f(path, std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(at);
    f.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(n));
  };

  const std::string truncated = copy("truncated");
  fs::resize_file(truncated + ".PA2", fs::file_size(truncated + ".PA2") / 2);
  const std::string foreign = copy("foreign");
  poke(foreign + ".PAT2", 0, "ABCD", 4);
  // A first file with two full directory blocks, the second chained back to the
  // first (a blank entry would end the directory before the chain).
  const std::string loop = copy("loop");
  {
    ArchiveFile first;
    Section& thlg = first.add(sections::THLG, 1, 1, 2);
    thlg.put_i32(1, 0, 1);
    thlg.put_i32(2, 0, 1);
    for (int k = 0; k < 38; ++k) first.add("X" + std::to_string(100 + k), 1, 2, 1);
    first.write(loop + ".PA1");
    int32_t second_head = 0;
    std::ifstream(loop + ".PA1", std::ios::binary).seekg(16).read(reinterpret_cast<char*>(&second_head), 4);
    ASSERT_GT(second_head, 21);
    const int32_t one = 1;
    poke(loop + ".PA1", (second_head - 1) * 20 + 16, &one, 4);
  }

  const std::vector<std::tuple<std::string, std::string, std::string>> broken = {
      {truncated, ".PA2", "the file holds"},
      {foreign, ".PAT2", "not an archive file"},
      {loop, ".PA1", "loops back to record 1"},
  };
  for (const auto& [base, ext, what] : broken) {
    const ToolRun s = tool().run("sections " + base);
    EXPECT_EQ(s.code, 1) << base;
    EXPECT_TRUE(one_line(s.err)) << s.err;
    EXPECT_NE(s.err.find(base + ext + ": "), std::string::npos) << s.err;
    EXPECT_NE(s.err.find(what), std::string::npos) << s.err;
    // A query that needs the file refuses as well; case 2 reads the direct file.
    const ToolRun h = tool().run("history " + base + " -t beam -i 1 -c 5 --case 2");
    EXPECT_EQ(h.code, 1) << base;
    EXPECT_TRUE(one_line(h.err)) << h.err;
    EXPECT_NE(h.err.find(base + ext + ": " ), std::string::npos) << h.err;
  }
}

TEST(Cli, ErrorLinesOfTheKernelStillShow) {
  // A second file whose head has another file code: the tool's reader lists
  // it, the kernel refuses every look-up in it with its own error line.
  const std::string dir = tool().dir().file("code3");
  fs::create_directories(dir);
  for (const char* ext : {".PA1", ".PA2", ".PAT2"}) fs::copy_file(tool().base() + ext, dir + "/frame" + ext, fs::copy_options::overwrite_existing);
  {
    std::fstream f(dir + "/frame.PA2", std::ios::in | std::ios::out | std::ios::binary);
    const int32_t code = 3;
    f.seekp(4);
    f.write(reinterpret_cast<const char*>(&code), 4);
  }
  const ToolRun r = tool().run("history " + dir + "/frame -t beam -i 1 -c 5 --steps 5 -f csv");
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.out.find("   ERROR READ-F IN RESP CORE , ID_M, ID_S=THIF"), std::string::npos) << r.out;
  EXPECT_TRUE(one_line(r.err)) << r.err;
  EXPECT_NE(r.err.find("the kernel reported"), std::string::npos) << r.err;

  // Quiet: standard output holds the CSV alone; the lines go to standard
  // error, each with its item, also when one call served several items.
  const ToolRun q = tool().run("snapshot " + dir + "/frame -t beam -i 2,3 -c My --step 5 -f csv --quiet");
  EXPECT_EQ(q.code, 1);
  EXPECT_EQ(q.out, "serial,number,end-i,end-j\n2,2,0,0\n3,3,0,0\n");
  for (const char* item : {"item 2:", "item 3:"}) {
    EXPECT_NE(q.err.find(std::string(item) + "    ERROR READ-F IN RESP CORE , ID_M, ID_S=BEAM      3\n"), std::string::npos) << q.err;
  }
}

}  // namespace
}  // namespace respcore::testing

#else

TEST(Cli, NeedsTheTool) {
  GTEST_SKIP() << "the respcore tool is not built here (RESPCORE_BUILD_TOOLS=OFF or CLI11 missing)";
}

#endif
