// The part of file access that is the same on every system.

#include "tessel/platform/file.h"

namespace tessel {

bool close_file(FilePtr file) {
    std::FILE* stream = file.release();
    const bool written = std::fflush(stream) == 0 && std::ferror(stream) == 0;
    return std::fclose(stream) == 0 && written;
}

void remove_incomplete(const std::string& path) {
    const auto status = file_status(path);
    if (status && status->m_bRegular) remove_file(path);
}

}  // namespace tessel
