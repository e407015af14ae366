// Bytes read come in, a line of progress goes to the terminal.

#include "tools/tessel_check/progress.h"

#include <cstdio>
#include <limits>

#include "tessel/base/message_text.h"
#include "tessel/platform/file.h"

namespace tessel::check {
namespace {

constexpr std::uint64_t kLargeFile = std::uint64_t{64} << 20;
constexpr std::uint64_t kHundred = 100;

void show(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

}  // namespace

CProgress::CProgress(const std::string& path, bool shown)
    : m_strName(path), m_uNext(std::numeric_limits<std::uint64_t>::max()) {
    const auto status = shown ? file_status(path) : std::nullopt;
    if (!status || status->m_uSize < kLargeFile) return;
    m_uSize = status->m_uSize;
    m_uNext = 0;
}

CProgress::~CProgress() {
    if (m_uSize > 0) show('\r' + std::string(m_strName.size() + 6, ' ') + '\r');
}

void CProgress::Show() {
    const std::uint64_t percent = m_uRead >= m_uSize ? kHundred : m_uRead / (m_uSize / kHundred);
    show(joined_text("\r", m_strName, " ", percent < kHundred ? percent : kHundred, "%"));
    m_uNext = (percent + 1) * (m_uSize / kHundred);
}

}  // namespace tessel::check
