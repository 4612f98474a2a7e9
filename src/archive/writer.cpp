#include <cstring>
#include <fstream>
#include <stdexcept>

#include "archive/directory_codec.hpp"
#include "archive/record_address.hpp"
#include "respcore/archive_writer.hpp"

namespace respcore {

namespace {

std::string pad_tag(std::string_view tag) {
  std::string t(tag.substr(0, 4));
  t.resize(4, ' ');
  return t;
}

}  // namespace

Section::Section(std::string tag, int32_t serial, int32_t reclen_words, int64_t nrec)
    : tag_(pad_tag(tag)), serial_(serial), reclen_words_(reclen_words), nrec_(nrec) {
  if (reclen_words <= 0 || nrec < 0) throw std::invalid_argument("section needs positive sizes");
  bytes_.assign(static_cast<size_t>(nrec) * static_cast<size_t>(reclen_words) * 4, 0);
}

unsigned char* Section::at(int64_t rec, int64_t byte_offset, size_t n) {
  const int64_t reclen = int64_t{reclen_words_} * 4;
  if (rec < 1 || rec > nrec_ || byte_offset < 0 ||
      byte_offset + static_cast<int64_t>(n) > reclen) {
    throw std::out_of_range("write outside section " + tag_ + " record " + std::to_string(rec));
  }
  return bytes_.data() + (rec - 1) * reclen + byte_offset;
}

void Section::put_i32(int64_t rec, int64_t word, int32_t v) { std::memcpy(at(rec, word * 4, 4), &v, 4); }
void Section::put_f32(int64_t rec, int64_t word, float v) { std::memcpy(at(rec, word * 4, 4), &v, 4); }
void Section::put_f64(int64_t rec, int64_t word, double v) { std::memcpy(at(rec, word * 4, 8), &v, 8); }
void Section::put_f64s(int64_t rec, int64_t word, std::span<const double> v) {
  if (!v.empty()) std::memcpy(at(rec, word * 4, v.size() * 8), v.data(), v.size() * 8);
}
void Section::put_i32s(int64_t rec, int64_t word, std::span<const int32_t> v) {
  if (!v.empty()) std::memcpy(at(rec, word * 4, v.size() * 4), v.data(), v.size() * 4);
}
void Section::put_bytes(int64_t rec, int64_t byte_offset, const void* data, size_t n) {
  if (n) std::memcpy(at(rec, byte_offset, n), data, n);
}

ArchiveFile::ArchiveFile(DirectoryForm form, int32_t file_code) : form_(form), file_code_(file_code) {}

Section& ArchiveFile::add(std::string_view tag, int32_t serial, int32_t reclen_words, int64_t nrec) {
  sections_.push_back(std::make_unique<Section>(std::string(tag), serial, reclen_words, nrec));
  Entry e;
  e.tag = pad_tag(tag);
  e.serial = serial;
  e.reclen = reclen_words;
  e.section = static_cast<int>(sections_.size()) - 1;
  entries_.push_back(e);
  return *sections_.back();
}

Section& ArchiveFile::add_f64_rows(std::string_view tag, int32_t serial,
                                   const std::vector<std::vector<double>>& rows,
                                   int32_t min_doubles) {
  size_t width = static_cast<size_t>(std::max(min_doubles, 1));
  for (const auto& r : rows) width = std::max(width, r.size());
  Section& s = add(tag, serial, static_cast<int32_t>(2 * width), static_cast<int64_t>(rows.size()));
  for (size_t i = 0; i < rows.size(); ++i) s.put_f64s(static_cast<int64_t>(i) + 1, 0, rows[i]);
  return s;
}

void ArchiveFile::add_blank_entry() {
  Entry e;
  e.tag = "    ";
  entries_.push_back(e);
}

void ArchiveFile::add_raw_entry(std::string_view tag, int32_t serial, int64_t first, int64_t last,
                                int32_t reclen_words) {
  Entry e;
  e.tag = pad_tag(tag);
  e.serial = serial;
  e.first = first;
  e.last = last;
  e.reclen = reclen_words;
  entries_.push_back(e);
}

Section* ArchiveFile::find(std::string_view tag, int32_t serial) {
  const std::string t = pad_tag(tag);
  for (auto& s : sections_) {
    if (s->tag() == t && s->serial() == serial) return s.get();
  }
  return nullptr;
}

std::vector<unsigned char> ArchiveFile::build() {
  const bool wide = form_ == DirectoryForm::Wide;
  const auto dir_rec = static_cast<size_t>(dir_record_bytes(wide));
  // The first block holds the directory's own entry and 19 more; every
  // further block holds 20.
  const size_t n_entries = entries_.size();
  const size_t blocks = n_entries <= 19 ? 1 : 1 + (n_entries - 19 + 19) / 20;
  const size_t dir_bytes = blocks * 21 * dir_rec;

  // Place the sections behind the directory, each on a record boundary of
  // its own length.
  size_t end = dir_bytes;
  for (auto& e : entries_) {
    if (e.section < 0) continue;
    Section& s = *sections_[static_cast<size_t>(e.section)];
    const size_t reclen = static_cast<size_t>(s.reclen_words()) * 4;
    const size_t first = (end + reclen - 1) / reclen + 1;
    s.first = static_cast<int64_t>(first);
    e.first = s.first;
    e.last = s.first + s.nrec() - 1;
    end = (first - 1) * reclen + s.bytes().size();
  }

  std::vector<unsigned char> out(end, 0);
  const float version = dir_version(wide);
  size_t next_entry = 0;
  for (size_t b = 0; b < blocks; ++b) {
    const size_t head_rec = b * 21 + 1;
    const int64_t next = b + 1 < blocks ? static_cast<int64_t>((b + 1) * 21 + 1) : 0;
    encode_head(make_head(file_code_, version, next), wide, out.data() + (head_rec - 1) * dir_rec);
    for (size_t n = 1; n <= 20; ++n) {
      DirEntry d;
      d.tag = BLANK_TAG;
      if (b == 0 && n == 1) {
        d = own_entry();
      } else if (next_entry < n_entries) {
        const Entry& e = entries_[next_entry++];
        std::memcpy(d.tag.data(), e.tag.data(), 4);
        d.serial = e.serial;
        d.first = e.first;
        d.last = e.last;
        d.reclen = e.reclen;
      }
      encode_entry(d, wide, out.data() + (head_rec - 1 + n) * dir_rec);
    }
  }
  for (auto& s : sections_) {
    const int64_t off = record_offset(s->first, int64_t{s->reclen_words()} * 4);
    if (!s->bytes().empty())
      std::memcpy(out.data() + off, s->bytes().data(), s->bytes().size());
  }
  return out;
}

void ArchiveFile::write(const std::string& path) {
  const auto bytes = build();
  std::ofstream f(path, std::ios::binary | std::ios::trunc);
  if (!f) throw std::runtime_error("cannot write " + path);
  f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!f) throw std::runtime_error("cannot write " + path);
}

ArchiveWriter::ArchiveWriter(std::string base, std::string product_tag, DirectoryForm form)
    : base_(std::move(base)), tag_(std::move(product_tag)), form_(form) {
  if (extension(tag_, 1).empty()) throw std::invalid_argument("unknown product tag " + tag_);
}

ArchiveFile& ArchiveWriter::first() {
  if (!first_) first_ = std::make_unique<ArchiveFile>(form_);
  return *first_;
}
ArchiveFile& ArchiveWriter::second() {
  if (!second_) second_ = std::make_unique<ArchiveFile>(form_);
  return *second_;
}
ArchiveFile& ArchiveWriter::direct(int32_t file_no) {
  auto& f = direct_[file_no];
  if (!f) f = std::make_unique<ArchiveFile>(form_);
  return *f;
}

std::string ArchiveWriter::first_path() const { return base_ + extension(tag_, 1); }
std::string ArchiveWriter::second_path() const { return base_ + extension(tag_, 2); }
std::string ArchiveWriter::direct_path(int32_t file_no) const {
  return base_ + extension(tag_, 3) + std::to_string(file_no);
}

void ArchiveWriter::write() {
  if (first_) first_->write(first_path());
  if (second_) second_->write(second_path());
  for (auto& [no, f] : direct_) f->write(direct_path(no));
}

std::string ArchiveWriter::extension(std::string_view product_tag, int kind) {
  static constexpr const char* kTags[][2] = {
      {"P.R.W", "P"}, {"Q.L.D", "Q"}, {"R.H.V", "R"}, {"U.K.Y", "U"}, {"W.M.Z", "W"},
      {"Y.J.P", "Y"}, {"D.X.K", "D"}, {"H.N.Q", "H"}, {"Z.B.T", "Z"}, {"J.W.U", "J"}};
  for (const auto& t : kTags) {
    if (product_tag == t[0]) {
      return std::string(".") + t[1] + (kind == 1 ? "A1" : kind == 2 ? "A2" : "AT");
    }
  }
  return {};
}

}  // namespace respcore
