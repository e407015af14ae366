#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "tessel/export.h"
#include "tessel/spectra/spectrum.h"

namespace tessel {

/// As a number of entries: all that remain.
inline constexpr std::size_t kAllEntries = std::numeric_limits<std::size_t>::max();

/// A reader of spectrum files. Count() opens a file, Browse() reads it batch by batch, Close()
/// ends. An entry is what the file stores once: an MGF block, a ZB2 scan (which may yield several
/// spectra).
class TESSEL_API CInput {
public:
    virtual ~CInput() = default;

    /// Appends the spectra of the next `num` entries to `out`; kAllEntries reads all that remain.
    /// Returns the number of entries consumed, 0 when nothing is left, before Count() and after
    /// Close().
    virtual std::size_t Browse(std::vector<CSpectrum>& out, std::size_t num) = 0;
    /// Opens a file and returns the number of its entries, 0 when it cannot be read. Whatever was
    /// open is closed before.
    virtual std::size_t Count(const std::string& path) = 0;
    /// Closes the file; true.
    virtual bool Close() = 0;
    /// What was wrong with the files read since the last call: one text each, naming the file. A
    /// reader that does not override this one tells of nothing.
    virtual std::vector<std::string> TakeFaults() { return {}; }
    /// Further calls of Browse() will not reach what may remain by the count: nothing is open, or
    /// the file has ended early. A reader that does not override this one has to reach its count.
    virtual bool Exhausted() const { return false; }
};

}  // namespace tessel
