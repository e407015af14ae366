#pragma once

#include <string>

#include "tessel/condition/condition.h"
#include "tessel/export.h"

namespace tessel {

/// Fills a condition from a parameter file. Counts out of range are replaced and reported; what the
/// search cannot do without (a path that does not exist) ends the process with status 1.
class TESSEL_API CConditionReader {
public:
    /// Ends the process with status 1 after "Invalid_Path: [path]" when the file does not exist.
    explicit CConditionReader(const std::string& path);
    virtual ~CConditionReader() = default;

    /// Reads every section. The first call shows messages by the level LOG_INFO whatever the file
    /// sets, because the level is read last. A file that is there but cannot be read to its end is
    /// an alert; what could not be read is missing, and every text of one that cannot be opened at
    /// all is empty.
    void Read();

    /// Ends the process with status 1 after "Invalid_<key>_Path: [path]" unless the path is the
    /// name of any existing file or folder.
    static void Validation_Path(const CCondition& condition, const std::string& path,
                                const std::string& key);

    /// True for a precursor tolerance that is almost certainly a mistake, in any unit: below 1e-5
    /// or above 10000.
    static bool _strange_precursor_tolerance(const CCondition& condition);
    /// The same of the fragment tolerance.
    static bool _strange_fragment_tolerance(const CCondition& condition);

    // The steps of Read(), in its order.

    void _LoadParam();   ///< section "param"
    void _LoadData();    ///< sections "file" and "datalist"; a missing path ends the process
    void _LoadEngine();  ///< section "engine"
    void _LoadFilter();  ///< section "filter"
    void _LoadQuant();   ///< section "quant"
    void _LoadSystem();  ///< section "system", with the level of messages from here on

    std::string m_strPath;    ///< the parameter file
    CCondition m_cCondition;  ///< filled by Read(); used in place, because it cannot be copied
};

}  // namespace tessel
