// Fuzz target: the input is one archive file. It is read as the first, the
// second and a direct file of an archive: the directory form is decided from
// it, sections of every kind are looked up in both forms and their records
// read, and the archive inspector reads its directory.
#include <algorithm>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "fuzz_input.hpp"
#include "respcore/archive_inspector.hpp"
#include "run/kernel_state.hpp"

namespace {

using namespace respcore;

// Sections of the first and the second file, and their serials.
const struct {
  const SectionName* name;
  int32_t serial;
} kLookups[] = {{&sections::THIF, 3}, {&sections::NDSP, 3}, {&sections::TRUS, 3},
                {&sections::BEAM, 4}, {&sections::MDSP, 3}, {&sections::MSHP, 3},
                {&sections::SOLD, 3}, {&sections::MSES, 1}, {&sections::THLG, 1},
                {&sections::IASE, 4}};

// Reads what a caller of S would: its first and last record, and a run of
// records from the first.
void read_section(ArchiveReader& A, const SectionRef& s) {
  double rec[16] = {};
  const int64_t nbytes = std::min<int64_t>(int64_t{s.reclen} * 4, sizeof rec);
  A.read(s, 1, rec, nbytes);
  A.read(s, s.nrec, rec, nbytes);
  A.read_f64(s, s.nrec / 2, VecRef<double>(rec, 16, "REC"), nbytes / 8);
  const int64_t count = std::clamp<int64_t>(A.readable(s, nbytes), 0, 64);
  std::vector<double> run(static_cast<size_t>(count * 2));
  std::vector<char> ok;
  A.read_run(s, 1, count, std::min<int64_t>(nbytes, 16), run.data(), ok);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string base = fuzz::scratch_dir() + "/d";
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  for (const char* ext : {".PA1", ".PA2", ".PAT1"}) fuzz::put_file(base + ext, &bytes);

  KernelState K;
  K.diag.quiet = true;
  const DiagnosticScope scope(K.diag);
  K.archive.FNAME = base;
  K.archive.FNAME.resize(1024, ' ');
  K.archive.FNAME_LEN = static_cast<int32_t>(base.size());
  std::memcpy(K.archive.PRODUCT_TAG.data(), "P.R.W", 5);
  ArchiveReader A = K.reader();
  FIND_READING_RESULT_METHOD(A);
  // The form the first file asked for, then the other one.
  for (int pass = 0; pass < 2; ++pass) {
    for (const auto& l : kLookups) {
      const SectionRef s = A.find(*l.name, l.serial);
      if (s.found()) read_section(A, s);
    }
    const SectionRef d = A.find_direct(sections::DMED, 1, 1);
    if (d.found()) read_section(A, d);
    K.archive.READ_METHOD = 1 - K.archive.READ_METHOD;
    close_all_units(K.units);
  }
  const FileInspection f = inspect_file(base + ".PA2");
  for (const SectionInfo& s : f.sections) read_section_record(f, s, s.records(), 8);
  return 0;
}
