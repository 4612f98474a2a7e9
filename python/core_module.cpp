// respcore._core: the Python binding of the kernel and the query layer.
//
// Each Archive owns a quiet kernel: the kernel's error lines never reach the
// process's streams, they are raised as ArchiveError. Requests run with the
// GIL released; one Archive serves one request at a time (a lock guards its
// kernel), separate Archives run side by side on separate threads. Result
// arrays take over the kernel's output vector, so no value is copied.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli_error.hpp"
#include "frame_demo.hpp"
#include "mesh_records.hpp"
#include "query.hpp"
#include "respcore/kernel.hpp"

namespace py = pybind11;

namespace respcore::python {

namespace {

using cli::CliError;
using cli::Item;

// The Python type of archive failures, made at import.
PyObject* g_archive_error = nullptr;

[[noreturn]] void raise_archive_error(const std::string& message, const std::vector<std::string>& lines = {}) {
  py::object error = py::reinterpret_borrow<py::object>(g_archive_error)(message);
  error.attr("lines") = py::cast(lines);
  PyErr_SetObject(g_archive_error, error.ptr());
  throw py::error_already_set();
}

// The Python exception of a CliError: ValueError for a wrong argument,
// ArchiveError for the archive.
void set_python_error(const CliError& e) {
  if (e.code == cli::EXIT_USAGE) {
    PyErr_SetString(PyExc_ValueError, e.what());
    return;
  }
  py::object error = py::reinterpret_borrow<py::object>(g_archive_error)(e.what());
  error.attr("lines") = py::list();
  PyErr_SetObject(g_archive_error, error.ptr());
}

// Runs F without the GIL. A CliError passes through; the module's
// translator turns it into the Python exception once the GIL is back.
template <class F>
auto released(F&& f) -> decltype(f()) {
  py::gil_scoped_release nogil;
  return f();
}

// The kernel reported lines: the values are not to be trusted.
void raise_on_lines(const cli::KernelLines& lines, const std::vector<Item>& items) {
  if (lines.empty()) return;
  std::vector<std::string> all;
  std::string message = "the kernel reported:";
  for (const cli::KernelLine& l : lines.output) {
    std::string text = l.text;
    if (l.item >= 0 && static_cast<size_t>(l.item) < items.size() && items.size() > 1) {
      text = "item " + std::to_string(items[static_cast<size_t>(l.item)].serial) + ": " + text;
    }
    all.push_back(text);
  }
  all.insert(all.end(), lines.diagnostics.begin(), lines.diagnostics.end());
  for (const std::string& l : all) message += "\n" + l;
  raise_archive_error(message, all);
}

// A numpy array that owns V's buffer.
py::array_t<double> to_array(std::vector<double>&& v, std::vector<py::ssize_t> shape) {
  auto* owned = new std::vector<double>(std::move(v));
  py::capsule owner(owned, [](void* p) { delete static_cast<std::vector<double>*>(p); });
  return py::array_t<double>(std::move(shape), owned->data(), owner);
}

py::array_t<int32_t> to_int_array(const std::vector<int32_t>& v, std::vector<py::ssize_t> shape = {}) {
  if (shape.empty()) shape = {static_cast<py::ssize_t>(v.size())};
  py::array_t<int32_t> a(shape);
  std::copy(v.begin(), v.end(), a.mutable_data());
  return a;
}

// Arguments --------------------------------------------------------------

std::string text_of(const py::handle& h, const char* what) {
  if (py::isinstance<py::str>(h)) return h.cast<std::string>();
  if (py::isinstance<py::int_>(h) && !py::isinstance<py::bool_>(h)) return std::to_string(h.cast<long long>());
  throw py::type_error(std::string(what) + " must be a name or a number, not " +
                       py::str(py::type::of(h).attr("__name__")).cast<std::string>());
}

const cli::Family& family_arg(const py::handle& h) {
  const std::string text = text_of(h, "family");
  const cli::Family* f = cli::find_family(text);
  if (f == nullptr) throw py::value_error("unknown family '" + text + "' (respcore.families() lists them)");
  return *f;
}

Item item_of(const py::handle& h) {
  if (py::isinstance<py::str>(h)) return cli::parse_item(h.cast<std::string>());
  if (py::isinstance<py::tuple>(h)) {
    const auto t = h.cast<py::tuple>();
    if (t.size() != 2) throw py::value_error("an item pair is (serial, number)");
    const Item it{t[0].cast<int>(), t[1].cast<int>()};
    if (it.serial < 1 || it.number < 1) throw py::value_error("items are positive");
    return it;
  }
  const long long v = h.cast<long long>();
  if (v < 1 || v > INT32_MAX) throw py::value_error("item " + std::to_string(v) + " is not a positive number");
  return {static_cast<int>(v), static_cast<int>(v)};
}

// Items as the caller gave them: a text to read against the section ("all",
// "1-6,9"), or a list.
struct ItemsArg {
  std::optional<std::string> text;
  std::vector<Item> list;
};

ItemsArg items_arg(const py::handle& h) {
  ItemsArg a;
  if (py::isinstance<py::str>(h)) {
    a.text = h.cast<std::string>();
  } else if (py::isinstance<py::int_>(h) || py::isinstance<py::tuple>(h)) {
    a.list.push_back(item_of(h));
  } else if (py::isinstance<py::array>(h)) {
    // Numbers, or rows of (serial, number).
    const auto arr = py::array_t<long long, py::array::c_style | py::array::forcecast>::ensure(h);
    const bool pairs = arr && arr.ndim() == 2 && arr.shape(1) == 2;
    if (!arr || !(arr.ndim() == 1 || pairs)) throw py::value_error("an item array holds numbers, or rows of (serial, number)");
    const long long* p = arr.data();
    const py::ssize_t n = pairs ? arr.shape(0) : arr.size();
    for (py::ssize_t i = 0; i < n; ++i) {
      const long long s = pairs ? p[2 * i] : p[i], e = pairs ? p[2 * i + 1] : p[i];
      if (s < 1 || s > INT32_MAX || e < 1 || e > INT32_MAX) throw py::value_error("items are positive numbers");
      a.list.push_back({static_cast<int>(s), static_cast<int>(e)});
    }
  } else {
    for (const py::handle& x : py::iter(h)) a.list.push_back(item_of(x));
  }
  if (!a.text && a.list.empty()) throw py::value_error("no items given");
  return a;
}

int mode_arg(const py::object& mode) {
  if (mode.is_none()) return 0;
  const int m = mode.cast<int>();
  if (m < 1) throw py::value_error("mode is a mode number from 1, or None for all modes");
  return m;
}

bool global_arg(const std::string& axes) {
  if (axes == "local") return false;
  if (axes == "global") return true;
  throw py::value_error("axes is 'local' or 'global', not '" + axes + "'");
}

int steps_arg(const py::object& steps) {
  if (steps.is_none()) return 0;
  const int n = steps.cast<int>();
  if (n < 1) throw py::value_error("steps counts the steps from the first, at least 1");
  return n;
}

// Python lists of components: (number, name, meaning).
py::list component_list(const std::vector<cli::Component>& v) {
  py::list l;
  for (const cli::Component& c : v) l.append(py::make_tuple(c.number, c.name, c.meaning));
  return l;
}

// Results -------------------------------------------------------------------

struct Envelope {
  py::array_t<double> max, min;            // the component
  py::array_t<int32_t> max_step, min_step; // the steps of the extremes, from 1
  py::object at_max, at_min;               // nodes: all six components at those steps
};

// The archive ---------------------------------------------------------------

class Archive {
 public:
  Archive(const std::string& base, const std::optional<std::string>& product) : base_(base) {
    view_ = released([&] { return cli::open_archive_view(base, product.value_or("")); });
    kernel_.set_quiet(true);
  }

  const std::string& base() const { return base_; }
  const std::string& product() const { return view_.files.product_tag; }

  std::vector<int> cases() {
    const int n = released([&] { return cli::case_count(view_); });
    std::vector<int> v(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) v[static_cast<size_t>(i)] = i + 1;
    return v;
  }

  py::object steps(int hist_case) {
    const int n = released([&] {
      std::lock_guard lock(mutex_);
      return case_of(hist_case).stored_steps;
    });
    return n > 0 ? py::object(py::int_(n)) : py::none();
  }

  int modes(int hist_case) {
    return released([&] {
      std::lock_guard lock(mutex_);
      const cli::CaseInfo& c = case_of(hist_case);
      return c.ithif[0] == 1 ? std::max(c.ithif[3], 0) : 0;
    });
  }

  std::string storage(int hist_case) {
    return released([&] {
      std::lock_guard lock(mutex_);
      return case_of(hist_case).storage;
    });
  }

  int64_t records(const py::object& family, int hist_case) {
    const cli::Family& f = family_arg(family);
    return released([&] {
      std::lock_guard lock(mutex_);
      return cli::family_section(view_, case_of(hist_case), f).records();
    });
  }

  py::array_t<double> history(const py::object& family, const py::object& item, const py::object& comp,
                              int hist_case, const py::object& steps, const py::object& mode,
                              const std::string& axes, bool absolute, const py::object& relative_to) {
    const cli::Family& f = family_arg(family);
    cli::Query q = query(f, cli::resolve_row(f, text_of(comp, "comp")).number, hist_case, mode, axes);
    const Item it = item_of(item);
    const int wanted = steps_arg(steps);
    cli::NodeMotion motion{absolute, relative_to.is_none() ? 0 : relative_to.cast<int>()};
    if (!relative_to.is_none() && motion.relative_to < 1) throw py::value_error("relative_to is a node number");
    cli::KernelLines lines;
    std::vector<double> v = released([&] {
      std::lock_guard lock(mutex_);
      const cli::CaseInfo& c = case_of(hist_case);
      const cli::FamilySection s = cli::family_section(view_, c, f);
      cli::check_item(f, s, it);
      if (motion.relative_to != 0) cli::check_item(f, s, Item{motion.relative_to, motion.relative_to});
      return cli::query_history(kernel_, q, it, cli::steps_of(wanted, c), motion, lines);
    });
    raise_on_lines(lines, {it});
    const auto n = static_cast<py::ssize_t>(v.size());
    return to_array(std::move(v), {n});
  }

  py::array_t<double> snapshot(const py::object& family, const py::object& items, const py::object& comp,
                               int step, int hist_case, const py::object& mode, const std::string& axes) {
    const cli::Family& f = family_arg(family);
    cli::Query q = query(f, cli::resolve_selector(f, text_of(comp, "comp")).number, hist_case, mode, axes);
    const ItemsArg arg = items_arg(items);
    cli::KernelLines lines;
    std::vector<Item> list;
    cli::SnapshotValues v = released([&] {
      std::lock_guard lock(mutex_);
      const cli::CaseInfo& c = case_of(hist_case);
      list = checked_items(f, c, arg);
      if (c.stored_steps > 0 && step > c.stored_steps) {
        throw cli::usage_error("step " + std::to_string(step) + " is past the " + std::to_string(c.stored_steps) +
                               " steps stored for case " + std::to_string(hist_case));
      }
      return cli::query_snapshot(kernel_, q, list, step, lines);
    });
    raise_on_lines(lines, list);
    return to_array(std::move(v.values), {static_cast<py::ssize_t>(list.size()), v.points});
  }

  // Many items over the same steps: items x steps.
  py::array_t<double> histories(const py::object& family, const py::object& items, const py::object& comp,
                                int hist_case, const py::object& steps, const py::object& mode,
                                const std::string& axes) {
    const cli::Family& f = family_arg(family);
    cli::Query q = query(f, cli::resolve_row(f, text_of(comp, "comp")).number, hist_case, mode, axes);
    const ItemsArg arg = items_arg(items);
    const int wanted = steps_arg(steps);
    cli::KernelLines lines;
    std::vector<Item> list;
    int n = 0;
    std::vector<double> v = released([&] {
      std::lock_guard lock(mutex_);
      const cli::CaseInfo& c = case_of(hist_case);
      list = checked_items(f, c, arg);
      n = cli::steps_of(wanted, c);
      std::vector<double> all;
      all.reserve(list.size() * static_cast<size_t>(n));
      for (size_t i = 0; i < list.size(); ++i) {
        cli::KernelLines each;
        const std::vector<double> h = cli::query_history(kernel_, q, list[i], n, {}, each);
        all.insert(all.end(), h.begin(), h.end());
        for (cli::KernelLine& l : each.output) lines.output.push_back({std::move(l.text), static_cast<int>(i)});
        lines.diagnostics.insert(lines.diagnostics.end(), each.diagnostics.begin(), each.diagnostics.end());
      }
      return all;
    });
    raise_on_lines(lines, list);
    return to_array(std::move(v), {static_cast<py::ssize_t>(list.size()), n});
  }

  // The items a request names, checked against the family's section:
  // rows of (serial, number).
  py::array_t<int32_t> items(const py::object& family, const py::object& items, int hist_case) {
    const cli::Family& f = family_arg(family);
    const ItemsArg arg = items_arg(items);
    const std::vector<Item> list = released([&] {
      std::lock_guard lock(mutex_);
      return checked_items(f, case_of(hist_case), arg);
    });
    py::array_t<int32_t> a({static_cast<py::ssize_t>(list.size()), py::ssize_t{2}});
    int32_t* p = a.mutable_data();
    for (size_t i = 0; i < list.size(); ++i) {
      p[2 * i] = list[i].serial;
      p[2 * i + 1] = list[i].number;
    }
    return a;
  }

  // The directory of each file of the archive, read now: (path, role,
  // exists, form, file code, blocks, size, problem, sections), each section
  // (tag, serial, first, last, reclen, records).
  py::list sections() {
    const ArchiveInspection a = released([&] { return inspect_archive(base_, view_.files.product_tag); });
    py::list files;
    for (const FileInspection& f : a.files) {
      const std::string role = f.kind == ArchiveFileKind::First    ? "first file"
                               : f.kind == ArchiveFileKind::Second ? "second file"
                                                                   : "direct file " + std::to_string(f.direct_no);
      py::list list;
      for (const SectionInfo& e : f.sections) {
        list.append(py::make_tuple(e.tag, e.serial, e.first, e.last, e.reclen, e.records()));
      }
      files.append(py::make_tuple(f.path, role, f.exists, f.form == DirectoryForm::Wide ? "64-bit" : "plain",
                                  f.file_code, f.blocks, f.size, f.problem, list));
    }
    return files;
  }

  // The geometry records: node coordinates (nodes x 3) and, per element
  // family, (name, serials, node counts, nodes as elements x most nodes).
  py::tuple mesh_records(int hist_case) {
    cli::MeshRecords m = released([&] {
      std::lock_guard lock(mutex_);
      return cli::read_mesh_records(view_, case_of(hist_case));
    });
    py::list families;
    for (const cli::ElementNodes& e : m.families) {
      const auto k = static_cast<py::ssize_t>(e.serials.size());
      families.append(py::make_tuple(e.family->name, to_int_array(e.serials), to_int_array(e.counts),
                                     to_int_array(e.nodes, {k, e.max_nodes})));
    }
    const auto n = static_cast<py::ssize_t>(m.xyz.size() / 3);
    return py::make_tuple(to_array(std::move(m.xyz), {n, 3}), families);
  }

  Envelope envelope(const py::object& family, const py::object& items, const py::object& comp, int hist_case,
                    const py::object& steps, const py::object& mode, const std::string& axes) {
    const cli::Family& f = family_arg(family);
    const cli::Component component = cli::resolve_row(f, text_of(comp, "comp"));
    cli::Query q = query(f, component.number, hist_case, mode, axes);
    const ItemsArg arg = items_arg(items);
    const int wanted = steps_arg(steps);
    cli::KernelLines lines;
    std::vector<Item> list;
    cli::EnvelopeValues v = released([&] {
      std::lock_guard lock(mutex_);
      const cli::CaseInfo& c = case_of(hist_case);
      list = checked_items(f, c, arg);
      return cli::query_envelope(kernel_, q, list, cli::steps_of(wanted, c), lines);
    });
    raise_on_lines(lines, list);
    const auto n = static_cast<py::ssize_t>(list.size());
    Envelope e;
    e.max_step = to_int_array(v.step_max);
    e.min_step = to_int_array(v.step_min);
    if (v.width == 1) {
      e.max = to_array(std::move(v.at_max), {n});
      e.min = to_array(std::move(v.at_min), {n});
      e.at_max = e.at_min = py::none();
      return e;
    }
    const size_t c = static_cast<size_t>(component.number - 1);
    std::vector<double> mx(list.size()), mn(list.size());
    for (size_t i = 0; i < list.size(); ++i) {
      mx[i] = v.at_max[6 * i + c];
      mn[i] = v.at_min[6 * i + c];
    }
    e.max = to_array(std::move(mx), {n});
    e.min = to_array(std::move(mn), {n});
    e.at_max = to_array(std::move(v.at_max), {n, 6});
    e.at_min = to_array(std::move(v.at_min), {n, 6});
    return e;
  }

 private:
  // Under the lock.
  const cli::CaseInfo& case_of(int hist_case) {
    const auto it = cases_.find(hist_case);
    if (it != cases_.end()) return it->second;
    return cases_.emplace(hist_case, cli::case_info(view_, hist_case)).first->second;
  }

  std::vector<Item> checked_items(const cli::Family& f, const cli::CaseInfo& c, const ItemsArg& arg) {
    const cli::FamilySection s = cli::family_section(view_, c, f);
    std::vector<Item> list = arg.text ? cli::parse_items(*arg.text, s.records()) : arg.list;
    for (const Item& it : list) cli::check_item(f, s, it);
    return list;
  }

  cli::Query query(const cli::Family& f, int comp, int hist_case, const py::object& mode, const std::string& axes) {
    cli::Query q;
    q.base = base_;
    q.product_index = cli::product_index(view_.files.product_tag);
    q.family = &f;
    q.comp = comp;
    q.hist_case = hist_case;
    q.mode = mode_arg(mode);
    q.global = global_arg(axes);
    return q;
  }

  std::string base_;
  cli::ArchiveView view_;
  Kernel kernel_;
  std::mutex mutex_;
  std::map<int, cli::CaseInfo> cases_;
};

}  // namespace

}  // namespace respcore::python

PYBIND11_MODULE(_core, m) {
  using namespace respcore;
  using namespace respcore::python;
  m.doc() = "respcore's compiled core: the kernel, the archive checks and the component tables.";

  static py::exception<CliError> archive_error(m, "ArchiveError", PyExc_RuntimeError);
  g_archive_error = archive_error.ptr();
  py::register_exception_translator([](std::exception_ptr p) {
    try {
      if (p) std::rethrow_exception(p);
    } catch (const CliError& e) {
      set_python_error(e);
    }
  });
  archive_error.doc() =
      "The archive is missing or broken, lacks what the request needs, or the kernel reported "
      "error lines (in .lines, the kernel's own text).";

  m.def("families", [] {
    py::list l;
    for (const cli::Family& f : cli::families()) {
      l.append(py::make_tuple(f.elem_type, f.name, f.description, std::string(f.section.tag), f.node));
    }
    return l;
  }, "The result families: (number, name, description, section tag, node results).");

  m.def("family", [](const py::object& family) {
    const cli::Family& f = family_arg(family);
    return py::make_tuple(f.elem_type, f.name, f.description, std::string(f.section.tag), f.node);
  }, py::arg("family"), "One family by name, alias or number.");

  m.def("components", [](const py::object& family) {
    const cli::Family& f = family_arg(family);
    const cli::ComponentTable& t = cli::component_table(f.elem_type);
    return py::make_tuple(component_list(t.rows), component_list(t.selectors), t.numbered_selectors);
  }, py::arg("family"),
  "History rows and snapshot selectors of a family, each (number, name, meaning); the flag "
  "tells that selectors past the named ones are taken by number.");

  m.def("points", [](const py::object& family, const py::object& comp) {
    const cli::Family& f = family_arg(family);
    const int c = cli::resolve_selector(f, text_of(comp, "comp")).number;
    return cli::point_labels(f.elem_type, c, static_cast<int>(result_size(f.elem_type, c, 1, 1, 2)));
  }, py::arg("family"), py::arg("comp"), "Labels of the columns of a snapshot of the selector.");

  m.def("write_demo", [](const std::string& dir, int steps, double damping, uint32_t seed) {
    if (steps < 2 || steps > 100000) throw py::value_error("steps must lie from 2 to 100000");
    if (!(damping >= 0 && damping < 1)) throw py::value_error("damping must lie in [0, 1)");
    demo::DemoOptions opt;
    opt.damping = damping;
    opt.seed = seed;
    opt.dt = opt.dt * opt.num_steps / steps;
    opt.num_steps = steps;
    py::gil_scoped_release nogil;
    return demo::write_demo_archive(dir, opt).base;
  }, py::arg("dir"), py::arg("steps") = 1000, py::arg("damping") = 0.02, py::arg("seed") = 20240611,
  "Runs the demo analysis (a steel frame under a synthetic earthquake) and writes its archive "
  "DIR/frame; returns the base name.");

  py::class_<Envelope>(m, "Envelope", "Largest and smallest values over the steps, with their steps.")
      .def_readonly("max", &Envelope::max, "the largest value of each item")
      .def_readonly("min", &Envelope::min, "the smallest value of each item")
      .def_readonly("max_step", &Envelope::max_step, "the step of the largest value, from 1")
      .def_readonly("min_step", &Envelope::min_step, "the step of the smallest value, from 1")
      .def_readonly("at_max", &Envelope::at_max,
                    "node results: the six components at the step of the largest value (items x 6)")
      .def_readonly("at_min", &Envelope::at_min,
                    "node results: the six components at the step of the smallest value (items x 6)")
      .def("__repr__", [](const Envelope& e) {
        return "<respcore.Envelope of " + std::to_string(e.max.size()) + " items>";
      });

  py::class_<Archive>(m, "Archive")
      .def(py::init<const std::string&, const std::optional<std::string>&>(), py::arg("base"),
           py::arg("product") = py::none())
      .def_property_readonly("base", &Archive::base, "the base name, without extension")
      .def_property_readonly("product", &Archive::product, "the product tag of the archive's files")
      .def_property_readonly("cases", &Archive::cases, "the history cases, from 1")
      .def("steps", &Archive::steps, py::arg("case") = 1, "steps stored for a case (None: not told)")
      .def("storage", &Archive::storage, py::arg("case") = 1, "'modal' or 'direct'")
      .def("modes", &Archive::modes, py::arg("case") = 1, "modes of a modal case (0 for a direct one)")
      .def("records", &Archive::records, py::arg("family"), py::arg("case") = 1,
           "records of the family's section: the items there are")
      .def("history", &Archive::history, py::arg("family"), py::arg("item"), py::arg("comp"),
           py::kw_only(), py::arg("case") = 1, py::arg("steps") = py::none(), py::arg("mode") = py::none(),
           py::arg("axes") = "local", py::arg("absolute") = false, py::arg("relative_to") = py::none(),
           "One item over the steps: a float64 array of STEPS values (default: every stored step).\n"
           "COMP is a history row by name or number. MODE picks one mode of a modal case; AXES is\n"
           "'local' (element or node axes) or 'global'. Node results only: ABSOLUTE adds the ground\n"
           "motion, RELATIVE_TO gives the motion relative to that node.")
      .def("snapshot", &Archive::snapshot, py::arg("family"), py::arg("items"), py::arg("comp"),
           py::arg("step"), py::kw_only(), py::arg("case") = 1, py::arg("mode") = py::none(),
           py::arg("axes") = "local",
           "Many items at one step: items x points (respcore.points(family, comp) names the\n"
           "points: both ends of a beam, the centre and nodes of a plate). COMP is a snapshot\n"
           "selector by name or number.")
      .def("histories", &Archive::histories, py::arg("family"), py::arg("items"), py::arg("comp"),
           py::kw_only(), py::arg("case") = 1, py::arg("steps") = py::none(), py::arg("mode") = py::none(),
           py::arg("axes") = "local", "Many items over the steps: items x steps, one history a row.")
      .def("_mesh_records", &Archive::mesh_records, py::arg("case") = 1)
      .def("_sections", &Archive::sections)
      .def("items", &Archive::items, py::arg("family"), py::arg("items"), py::arg("case") = 1,
           "The items named, checked against the family's section: rows of (serial, number).")
      .def("envelope", &Archive::envelope, py::arg("family"), py::arg("items"), py::arg("comp"),
           py::kw_only(), py::arg("case") = 1, py::arg("steps") = py::none(), py::arg("mode") = py::none(),
           py::arg("axes") = "local",
           "The largest and smallest value of a history row over the steps, per item, with the\n"
           "steps where they first occur (an Envelope). Node results come from the kernel's\n"
           "envelope and add all six components at those steps.");
}
