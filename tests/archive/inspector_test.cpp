// The archive inspector against the writer: what the typed writers lay
// down is listed back section by section in both directory forms.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "respcore/archive_inspector.hpp"
#include "support/temp_dir.hpp"

namespace respcore {
namespace {

using testing::TempDir;

TEST(Inspector, ListsWhatTheWriterWrote) {
  for (const DirectoryForm form : {DirectoryForm::Plain, DirectoryForm::Wide}) {
    TempDir dir;
    const std::string base = dir.file("model");
    ArchiveWriter w(base, "R.H.V", form);
    w.element_forms({1, 2});
    w.history_cases({{2, 7, 4, 0, 0}, {1, 1, 4, 3, 0}});
    const BeamRecord beam{.lm = std::vector<double>(12, 1.0),
                          .strs = std::vector<double>(312, 0.5)};
    w.beam_records(4, {beam, beam, beam});
    w.direct_histories(7, {{{1, 2, 3, 4}, {}, {}}, {{}, {}, {5, 6, 7, 8}}}, 4);
    w.write();

    const ArchiveInspection a = inspect_archive(base, "R.H.V");
    ASSERT_EQ(a.files.size(), 3u);  // first, second, direct file 7
    for (const FileInspection& f : a.files) {
      EXPECT_TRUE(f.sound()) << f.path << ": " << f.problem;
      EXPECT_EQ(f.form, form);
      ASSERT_FALSE(f.sections.empty());
      EXPECT_EQ(f.sections.front().tag, "HEAD");
    }
    const FileInspection* second = a.file(ArchiveFileKind::Second);
    EXPECT_EQ(second->path, base + ".RA2");
    const SectionInfo* thif = second->find(sections::THIF, 3);
    EXPECT_EQ(thif->records() * 10 + thif->reclen, 25);
    const auto rec = read_section_record(*second, *thif, 1, 8);
    ASSERT_TRUE(rec.has_value());
    int32_t words[2];
    std::memcpy(words, rec->data(), 8);
    EXPECT_EQ(words[0], 2);
    EXPECT_EQ(words[1], 7);
    const SectionInfo* beams = second->find(sections::BEAM, 4);
    EXPECT_EQ(beams->records(), 3);
    EXPECT_EQ(beams->reclen, 2 * BeamRecord::kWords);
    EXPECT_FALSE(read_section_record(*second, *beams, 4, 8).has_value());
    // Three records per equation in direct file 7.
    EXPECT_EQ(a.file(ArchiveFileKind::Direct, 7)->find(sections::DMED, 1)->records(), 6);
  }
}

}  // namespace
}  // namespace respcore
