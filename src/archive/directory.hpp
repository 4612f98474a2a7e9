// The archive's indexed direct-access files: look-up of a section by tag and
// serial in the file's directory, and the writer of an empty directory. The
// byte layout of the directory is that of archive/directory_codec.hpp.
#pragma once

#include <cstdint>
#include <string>

#include "archive/directory_codec.hpp"

namespace respcore {

class ArchiveReader;

// Look-up statuses.
inline constexpr int32_t LOOKUP_FOUND = 0;
inline constexpr int32_t LOOKUP_OPEN_FAILED = 1;
inline constexpr int32_t LOOKUP_READ_ERROR = 2;
inline constexpr int32_t LOOKUP_NOT_FOUND = 4;
inline constexpr int32_t LOOKUP_BAD_REQUEST = 6;
inline constexpr int32_t LOOKUP_BAD_HEAD = 7;

// Plain-form look-ups (READ_F serves the first file, READ_F_TIME the second
// and the direct files). NAME holds at least NAME_LEN characters.
void READ_F(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
            int32_t file_code, const Tag4& tag, int32_t serial, int32_t& first, int32_t& reclen,
            int64_t& nrec, int32_t& status);
void READ_F_TIME(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
                 int32_t file_code, const Tag4& tag, int32_t serial, int32_t& first,
                 int32_t& reclen, int64_t& nrec, int32_t& status);
// 64-bit-form look-ups.
void READ_F_8(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
              int32_t file_code, const Tag4& tag, int32_t serial, int64_t& first, int32_t& reclen,
              int64_t& nrec, int32_t& status);
void READ_F_TIME_8(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
                   int32_t file_code, const Tag4& tag, int32_t serial, int64_t& first,
                   int32_t& reclen, int64_t& nrec, int32_t& status);

// Lays an empty directory of the form in force (READ_METHOD 0 plain, 1 64-bit)
// in a new file NAME(1:NAME_LEN), replacing any file of that name. Statuses:
// 0 done, 1 open failed, 3 write failed, 6 name length below 1.
void CREATE_F(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
              int32_t file_code, int32_t& status);

}  // namespace respcore
