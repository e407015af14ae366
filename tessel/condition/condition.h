#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tessel/chem/alphabet.h"
#include "tessel/chem/mod.h"
#include "tessel/condition/log_type.h"
#include "tessel/database/fasta_loader.h"
#include "tessel/export.h"
#include "tessel/result/psm_res.h"
#include "tessel/space/enzyme.h"
#include "tessel/space/ion_type.h"
#include "tessel/space/mod_comb.h"
#include "tessel/spectra/input.h"
#include "tessel/spectra/spectrum.h"

namespace tessel {

/// The search condition: every setting and every table of one search.
///
/// A caller fills the settings (CConditionReader does it from a parameter file), calls
/// Initialize(), reads spectra and proteins in batches, and after the search loads, cleans and
/// writes the results. Everything is held by value; the selections, the indexes and the loader
/// point into the object itself, so it is neither copied nor moved: pass it by reference. It keeps
/// no locks; one thread at a time may use an object.
///
/// The values below are those of a fresh object. A parameter file that leaves a key out may set
/// another one, on purpose: "temppepnum" 50, "maxprolen" 1000000, "max_clv_sites" 2, "rest_tag_len"
/// 4, "rest_mod_num" 10, "salvo_iteration" false, "outputname" "test", "quant" "1|None",
/// "label_name" "None" and "msmstype" "MGF" among them.
class TESSEL_API CCondition {
public:
    double m_lfPrecursorTol = 20.0;  ///< precursor tolerance, ppm or Da by m_bPrecursorPPM; "mstol"
    double m_lfFragmentTol = 20.0;   ///< fragment tolerance, ppm or Da by m_bFragmentPPM; "msmstol"
    bool m_bPrecursorPPM = true;     ///< precursor tolerance is in ppm, not Da; "mstolppm"
    bool m_bFragmentPPM = true;      ///< fragment tolerance is in ppm, not Da; "msmstolppm"
    std::size_t m_tMaxModNum = 3;    ///< variable modifications on a peptide, 0 to 20; "maxmod"
    CEnzyme m_cEnzyme;               ///< the protease, "Trypsin KR _ C" when fresh; "enzyme"
    std::string m_strFastaPath;  ///< the user's database; SetSubFasta() replaces it; "fastapath"
    std::string m_strInputFastaPath;  ///< the database searched; see SetFastaPath()
    bool m_bMSMSFolder = false;       ///< the data list names folders, not files; "msmsfolder"
    std::string m_strMSMSPath;        ///< spectrum file that LoadSpectra() reads; "msmspath"
    std::vector<std::string> m_vMSMSFiles;  ///< all spectrum files of the run; "msmspath1" ...
    std::string m_strOutputPath;            ///< prefix of output files, ends in "\"; "outputpath"
    std::string m_strOutputName = "Test";   ///< begins the names of output files; "outputname"
    std::string m_strModPath;               ///< modification table; "modpath"
    std::string m_strAAPath;                ///< amino-acid table; "aapath"
    std::string m_strAux;                   ///< for the engine
    int m_nAux = 0;                         ///< for the engine
    std::size_t m_tTempPepNum = 100;        ///< candidates kept while searching; "temppepnum"
    std::size_t m_tPepNum = 10;             ///< ranks reported per spectrum; "pepnum"
    std::size_t m_tSelectPeak = 200;  ///< peaks of a spectrum to use, at most 5000; "selectpeak"
    std::size_t m_tMaxProLen = 60000000;  ///< residues of a protein batch; "maxprolen"
    std::vector<CSpectrum> m_vSpectra;    ///< the current batch of spectra
    std::vector<CMod> m_vMods;            ///< the modification table
    std::vector<const CMod*> m_vSelMods;  ///< the selected ones, fixed first, each once
    std::set<const CMod*> m_setFixMods;   ///< the fixed ones among them
    /// The selected ones by slot: 1 to 4 the terminal ones by MOD_TYPE, 'A' to 'Z' the others by
    /// site letter.
    std::array<std::vector<const CMod*>, 92> m_vSelModMap;
    std::vector<std::vector<CModCombInfo>> m_vModComb;  ///< combinations by extra modifications
    std::vector<std::vector<std::uint32_t>> m_vModCombHash;  ///< mass lookup over each group
    std::vector<std::uint32_t> m_vModMassIndex;              ///< mass lookup over m_vMods
    std::vector<CIonType> m_vIonTypes;                       ///< fragment ion series
    CAlphaBet m_cAlphaBet;                                   ///< residue masses and compositions
    std::map<std::string, CMod*> m_mapMods;  ///< by name, m_vMods and m_vDeltaMods; null: unknown
    std::vector<CMod> m_vDeltaMods;          ///< generated mass shifts of the open search
    std::string m_strSelectMod;              ///< variable modifications, ";" between; "selectmod"
    std::string m_strFixMod;                 ///< fixed modifications, ";" between; "fixmod"
    std::map<std::string, CPSMRes> m_mapPSMRes;  ///< results by spectrum title
    std::size_t m_tThreadNum = 2;                ///< threads of the engine; "thread"
    std::size_t m_tMaxClvSites = 3;              ///< missed cleavages; "max_clv_sites"
    CFastaLoader m_cFastaLoader;                 ///< reads m_strInputFastaPath batch by batch
    std::size_t m_nMaxSpec = 10000;              ///< entries of a spectrum batch; "maxspec"
    std::unique_ptr<CInput> m_pSpecReader;       ///< open between batches, otherwise null
    std::size_t m_tTotalSpec = 0;                ///< entries in the open spectrum file
    std::size_t m_tLoadedSpec = 0;               ///< of these, consumed so far
    std::size_t m_tBatchNo = 0;                  ///< batches since the file was opened
    std::size_t m_tAux = 5;                      ///< for the engine
    std::array<double, 4> m_lfCleaveProb{1.0, 1.0, 1.0, 1.0};  ///< learned cleavage coefficients
    bool m_bUseSubFasta = false;                               ///< a sub-database is searched
    unsigned char m_ucDigest = 3;        ///< 0 unspecific, 1 semi-specific, 3 specific; "digest"
    std::string m_strMSMSType = "ZB2";   ///< "MGF", "ZBS", anything else is ZB2; "msmstype"
    LOG_TYPE m_eLogType = LOG_INFO;      ///< highest level of message shown; "log"
    bool m_bRestTagIteration = false;    ///< for the engine; "rest_tag_iteration"
    bool m_bSalvoIteration = true;       ///< for the engine; "salvo_iteration"
    int m_nOpenTagLen = 5;               ///< tag length of the open search; "open_tag_len"
    int m_nRestTagLen = 5;               ///< tag length of the rest search; "rest_tag_len"
    int m_nRestModNum = -1;              ///< for the engine; "rest_mod_num"
    int m_nSalvoModNum = 5;              ///< for the engine; "salvo_mod_num"
    std::string m_strQuant = "1|None|";  ///< a count and label names, "|" between; "quant"
    std::string m_strLabelName;          ///< label of a worker's tables; "label_name"
    std::vector<std::string> m_vLabels;  ///< label names of m_strQuant
    std::map<std::string, double> m_mapElementMass;  ///< element symbol to mass, Da
    /// The label last read: residue letter to (element symbol to its replacement).
    std::map<char, std::map<std::string, std::string>> m_mapAALabel;
    /// The same by modification name.
    std::map<std::string, std::map<std::string, std::string>> m_mapModLabel;
    std::int16_t m_sLabelID = 0;          ///< number of a worker's label; "label_id"
    double m_lfMassUpper = 100000.0;      ///< heaviest peptide, Da; "mass_upper"
    double m_lfMassLower = 600.0;         ///< lightest peptide, Da; "mass_lower"
    int m_nLenUpper = 100;                ///< longest peptide, residues; "len_upper"
    int m_nLenLower = 6;                  ///< shortest peptide, residues; "len_lower"
    double m_lfPsmFdr = 0.01;             ///< accepted FDR of matches; "psm_fdr"
    double m_lfProFdr = 0.01;             ///< accepted FDR of proteins; "pro_fdr"
    int m_nPsmFdrType = 1;                ///< 0 by spectrum match, 1 by peptide; "psm_fdr_type"
    int m_nPepPerPro = 1;                 ///< peptides that make a protein; "pep_per_pro"
    double m_lfBatchMassLower = 600.0;    ///< lightest peptide the batch needs, MH+ in Da
    double m_lfBatchMassUpper = 10000.0;  ///< heaviest peptide the batch needs, MH+ in Da
    double m_lfMaxDelta = 500.0;  ///< mass shifts reach this far from the centre, Da; "maxdelta"
    double m_lfCenter = 0.0;      ///< centre of the mass shifts, Da; "center"
    int m_nOpen = 1;              ///< open search; "open"
    bool m_bIeqL = true;          ///< I and L count as one residue; "IeqL"
    std::vector<ExtendedAA> m_vExtendedAA;  ///< residues with at most one selected modification
    std::vector<std::uint32_t> m_vEAAMassIndex;  ///< mass lookup over m_vExtendedAA
    bool m_bAutoRev = true;                      ///< search a target-decoy database; "auto_rev"
    bool m_bNPep = true;                         ///< consider signal peptides; "npep"
    int m_nSignalPepLen = 60;                    ///< longest signal peptide, residues; from "npep"
    bool m_bDelTmp = true;          ///< the engine removes temporary files; "del_tmp_files"
    std::string m_strLumenPath;     ///< for the engine; "lumen_path"
    std::string m_strLumenCfgPath;  ///< for the engine; "lumen_cfg_path"
    int m_nMultip = 1;              ///< processes of the engine; "multip"
    std::string m_strActivationType = "HCD-FTMS";  ///< method; "activation_type"
    bool m_bETD = false;                           ///< the ion types are those of ETD
    std::uint32_t m_uMaxTag = 100;                 ///< tags of a spectrum; "max_tag"
    std::uint32_t m_uMaxResTag = 100;              ///< tags in the rest search; "max_res_tag"
    bool m_bDigestInOpen = false;                  ///< for the engine; "digest_in_open"
    unsigned char m_ucMaxEdge = 2;                 ///< for the engine; "max_edge"
    int m_nMaxGenModPep = 5000;                    ///< for the engine; "max_gen_mod_pep"
    bool m_bNoProc = false;                        ///< for the engine; "noproc"
    int m_nMaxRound = 10;                          ///< rounds of the open search; "max_round"

    /// With the values above; reads no file.
    CCondition();
    ~CCondition();
    CCondition(const CCondition&) = delete;
    CCondition& operator=(const CCondition&) = delete;

    // ---- Start-up: condition/initialize.cpp ----

    /// Makes an object whose settings are complete ready to search: labels, elements, amino acids,
    /// modifications and their selection, ion types, database, in this order. Returns 1; what goes
    /// wrong is reported, or ends the process, where it happens. Needs "element.ini" in the working
    /// folder. Throws std::runtime_error when the protein database does not exist. Run it once: a
    /// second run appends labels and ion types again.
    int Initialize();

    // ---- Messages and small helpers: condition/condition.cpp ----

    /// Writes "[Tessel] ", the level's mark and the text as one line to standard output, when
    /// `type` is not above m_eLogType. Alerts are always shown, in bright red, warnings in bright
    /// green, where standard output is a console.
    void Message(const std::string& text, LOG_TYPE type) const;
    /// "LOG_ALERT" for LOG_ALERT, and so on; empty for any other value.
    std::string LogType2String(LOG_TYPE type) const;
    /// Appends the fields of `text` that are not empty to `out`, which is not cleared.
    void StringSplit(const std::string& text, const char& delimiter,
                     std::vector<std::string>& out) const;
    /// The tolerance at a mass or m/z, in Da: of the precursor or else of the fragments.
    double _CalcMaxDeviation(const double& mass, bool precursor) const;
    /// Number of set bits.
    std::uint32_t _GetBitsNum(std::uint32_t value) const;

    // ---- Elements and amino acids: chem/elements_aa.cpp ----

    /// Rebuilds m_mapElementMass from "element.ini" in the working folder: for each element the
    /// mass of its most abundant isotope. A missing file leaves the map empty, without a message.
    void ReadElementInfo();
    /// Adds the residues of m_strAAPath to m_cAlphaBet; letters that the file does not name stay as
    /// they are. Needs ReadElementInfo(). A missing file changes nothing, without a message.
    void ReadAA();

    // ---- Modification table: chem/mod_table.cpp ----

    /// Rebuilds m_vMods from m_strModPath; a missing file ends the process with status 1. Makes
    /// stale whatever points into m_vMods until CreateModList() has run, selections and m_mapMods;
    /// empties m_setFixMods, and letters of the extended alphabet lose their m_pMod. A file that is
    /// there but cannot be read to its end is an alert; what was read before is kept. Definitions
    /// whose numbers are missing or are none get defaults for them, with one alert for the file.
    void ReadMod();

    // ---- Modification selection: chem/mod_selection.cpp ----

    /// Turns m_strFixMod and m_strSelectMod into the selection tables, sorts and indexes m_vMods,
    /// and rebuilds the mass shifts. Needs ReadMod(), ReadAA() and ParseQuantMethod(). Makes stale
    /// every CMod pointer handed out before. An unknown name is skipped with a warning.
    /// Run it once for each table read: it adds a placeholder "NULL" to m_vMods, and a second set
    /// of letters to m_vExtendedAA, whose older letters lose their m_pMod and mean nothing more.
    /// A mass shift range that is not finite or would hold more than 10 million shifts, and a mass
    /// that no lookup table can reach, are reported; that table stays empty.
    void CreateModList();
    /// Appends the selections that `names` lists, ";" between them, to m_vSelMods, and if they are
    /// fixed to m_setFixMods: each name as it stands and in its labelled forms #0, #1, ... Needs
    /// m_mapMods. A name without any of them is a warning. Two ";" side by side spoil the name
    /// behind them, which then matches nothing: users' files count on that.
    void _parse_mod(const std::string& names, bool isFixed);
    /// Drops repeated selections, fills m_vSelModMap, and adds the residues, alone and with each
    /// selected modification, to the extended alphabet. Needs selections of the present m_vMods and
    /// m_vDeltaMods: those of CreateModList(), run since the last ReadMod(), GenTmpMod() or
    /// WriteConfFiles(), or others that point there.
    void HandleSelectMod();
    /// Fills m_vSelModMap from m_vSelMods. Needs the same.
    void CreateSelModMap();
    /// The name under which a label's form of a modification stands in the table: name#0 for label
    /// number 0, which is the unlabelled form.
    std::string _get_labeled_mod_name(const std::string& name, const int& labelNumber) const;
    /// Adds the selections of the learn file (output path + output name + ".learn"), until
    /// `maxMods` modifications are selected, those of before included, but at least one; then the
    /// common ones that every open search considers. Takes over the learned cleavage coefficients
    /// and probabilities; a probability that cannot be read stays as it was, its modification is
    /// selected all the same. An unknown name is a warning, a file that fails while it is read an
    /// alert. False, and nothing changed, when the file cannot be opened. Needs CreateModList()
    /// since the last ReadMod(), GenTmpMod() or WriteConfFiles().
    bool SetSelMod(const std::size_t& maxMods);

    // ---- Quantitation labels: chem/labels.cpp ----

    /// Appends the label names of m_strQuant to m_vLabels; run it once.
    void ParseQuantMethod();
    /// Replaces m_mapAALabel and m_mapModLabel by the definition of a label in "quant.ini" in the
    /// working folder. A label without a definition ends the process with status 1, and so does an
    /// item that is neither of residues nor of modifications.
    void ReadLabelInfo(const std::string& label);
    /// Reads the residues of m_strAAPath into m_cAlphaBet with the elements that m_mapAALabel
    /// replaces, and writes them by WriteAA(). `labelIndex` counts m_vLabels from 0. Needs
    /// ReadElementInfo() and ReadLabelInfo().
    void GenTmpAA(const std::size_t& labelIndex);
    /// Replaces m_vMods by its labelled and unlabelled forms and writes them by WriteMod(). A
    /// modification in which m_mapModLabel replaces an element gets a form with the label's number
    /// (labelIndex + 1) and the mass of its new composition; all others, and it too, stay as form
    /// #0. Without form #0 are those that lose a replaced element, and conversions of one residue
    /// into another (11 characters such as "Ala->Ser[A]"; one without a composition keeps it).
    /// Needs ReadMod() and ReadLabelInfo(); makes stale what ReadMod() does.
    void GenTmpMod(const std::size_t& labelIndex);

    // ---- Temporary tables: chem/temporary_tables.cpp ----

    /// Writes the tables of every label for the worker processes; returns the number of labels.
    /// Needs ParseQuantMethod(). Afterwards m_cAlphaBet and m_vMods are those of the last label,
    /// and no selection holds before ReLoadAllMods(). A table that cannot be written completely is
    /// an alert and is removed.
    std::size_t WriteConfFiles();
    /// Makes m_vMods of the modification files that WriteConfFiles() has written, of equal names
    /// the first, and runs CreateModList(). m_strModPath is left at the last of the files. A
    /// missing file ends the process with status 1.
    void ReLoadAllMods();
    /// Amino-acid table of a label: output path + number + ".aa". The first label, index 0, has
    /// number 1; the number has 32 bits. No separator is added to the output path.
    std::string GetTmpAAPath(const std::size_t& labelIndex) const;
    /// Modification table of a label: likewise with ".mod".
    std::string GetTmpModPath(const std::size_t& labelIndex) const;
    /// Writes m_cAlphaBet, all 26 letters, as amino-acid table of a label. Letters that were never
    /// defined have no composition. A file that cannot be written completely is an alert and is
    /// removed. The label's name is empty for an index beyond m_vLabels.
    void WriteAA(const std::size_t& labelIndex) const;
    /// Writes m_vMods as modification table of a label, likewise. m_nFlag survives from 0 to 99.
    void WriteMod(const std::size_t& labelIndex) const;

    // ---- Modification combinations: space/mod_combinations.cpp ----

    /// Rebuilds m_vModComb, three groups: all multisets of up to three of m_vSelMods (0), each of
    /// them with one (1) and with two (2) entries of m_vMods, the placeholder left out. None has
    /// two N-terminal or two C-terminal modifications. Each group is sorted by mass, equal masses
    /// in the order of enumeration, and tabled in m_vModCombHash. Needs CreateModList(); the
    /// combinations are as long-lived as the modifications. The number of combinations grows with
    /// the square of the table; it is logged beforehand, and as a warning when they take more than
    /// 1 GiB. When the memory cannot be had, an alert tells number and size, and the process ends
    /// with status 1.
    void GenerateModComb();
    /// One step of the enumeration: appends `comb`, as it is and with extra modifications, to the
    /// three groups of m_vModComb, which must be there, then goes on with every selected
    /// modification from `start` on, up to three in all. The flags hold the type of the N-terminal
    /// and of the C-terminal modification in `comb`, or 0. `comb` is changed in between and
    /// restored, its mass by subtraction.
    void _generate_mod_comb(CModCombInfo& comb, std::int8_t nTerm, std::int8_t cTerm,
                            std::size_t start);
    /// Sorts the groups of m_vModComb by mass and rebuilds m_vModCombHash. With o the first
    /// combination's mass in thousandths of a dalton, truncated toward zero, or 0 if that is above
    /// 0: entry k of a group's table is the first combination of at least k + o, up to the
    /// heaviest. Stops at the first empty group, whose table is empty; later ones stay unsorted,
    /// too. A mass that no table can reach is reported, and the table of its group stays empty.
    /// Masses that are not finite stand at the end of their group, in no table.
    void CreateModCombHash();

    // ---- Ion types: space/ion_types.cpp ----

    /// Appends b and y, charges 1 to 5, to m_vIonTypes; true.
    bool InitHCD();
    /// Appends c, c-1, z, z+1 and y, charges 1 to 5, to m_vIonTypes; true.
    bool InitETD();

    // ---- Spectra: spectra/load_spectra.cpp ----

    /// Replaces m_vSpectra by the next batch of m_strMSMSPath: m_nMaxSpec entries, or all that
    /// remain. True when entries remain behind it; after false the next call starts over. Spectra
    /// whose MH+ is not from 0 to 20000 Da are dropped, although they count as loaded. Sets the
    /// batch's mass range unless the batch is empty. Files that cannot be read, are not of the type
    /// that m_strMSMSType names, or are cut off, are reported; never is true returned for ever. A
    /// ZBS batch that is too small for the next listed file loads nothing, which is reported; the
    /// second such call in a row ends the loading. A batch size of 0 is one entry of a ZB2 file and
    /// everything of an MGF file.
    bool LoadSpectra(bool bAll);

    // ---- Protein database: database/prepare_database.cpp ----

    /// Settles m_strInputFastaPath: m_strFastaPath itself, or with m_bAutoRev the target-decoy
    /// database beside it, which is generated unless one is there that is not older. Uses and
    /// resets m_cFastaLoader, which has to be Reset() again before proteins are read. Throws
    /// std::runtime_error when the database does not exist, with m_strInputFastaPath naming it, and
    /// leaves an empty target-decoy database where none stood. One that cannot be written, or a
    /// source that keeps changing, ends the process with status 1; what stood there before stays.
    void SetFastaPath();
    /// Turns the search to the sub-database output path + output name + ".sub.fasta", which the
    /// engine has written; returns 1.
    int SetSubFasta();

    // ---- Index files: database/index_files.cpp ----

    /// Accession file of the searched database: its path with ".pac" for the last six characters.
    std::string GetACPath() const;
    /// Description file of the searched database: likewise with ".pde".
    std::string GetDEPath() const;
    /// Replaces `acs` by the lines of the accession file up to the first empty one; no line when
    /// the file is missing. One that is there and cannot be read is an alert.
    void ReadProteinAC(std::vector<std::string>& acs) const;
    /// Replaces `des` by all lines of the description file, empty ones included; likewise.
    void ReadProteinDE(std::vector<std::string>& des) const;
    /// Has the external indexing tool write the accession and description files of a database anew,
    /// unless both are there and not older than m_strInputFastaPath. A failing tool ends the
    /// process with status 1.
    void UpdateProteinAC(const std::string& database) const;

    // ---- Reading results: result/read_results.cpp ----

    /// Replaces m_mapPSMRes by an empty entry for every spectrum of m_vSpectra; returns 1. Of
    /// spectra with one title the last wins, and one warning tells how many titles were shared.
    int InitialResMap();
    /// Reads the fields of a peptide line, its rank already taken, and sets the mass deviation from
    /// the spectrum; returns 1. `buffer` has room for 81920 characters. The stream is left behind
    /// the last field read; a field that cannot be read ends the reading, and `pep`, which should
    /// be fresh, keeps those before it. An unknown modification name enters m_mapMods with null.
    int _ReadOnePep(const CPSMRes& psm, CPepRes& pep, char* buffer, std::FILE* file);
    /// Adds the candidates of a result file to m_mapPSMRes, up to `maxPeps` per spectrum in file
    /// order, without those whose final score is above `maxFinalScore`; returns 1. Records that
    /// cannot be read are dropped with one alert for the file.
    int _LoadResult(const std::string& path, const unsigned long long& maxPeps,
                    const double& maxFinalScore);
    /// Likewise, but keeps one candidate per spectrum, the first by CPepRes::ConfidentByQV.
    int _LoadGroupResult(const std::string& path);
    /// _LoadResult() for every path, then sorts by CPepRes::ScoreGreater and drops duplicates.
    int LoadResult(const std::vector<std::string>& paths, const unsigned long long& maxPeps,
                   const double& maxFinalScore);
    /// _LoadGroupResult() for every path, then sorts by CPepRes::ConfidentByQV and drops
    /// duplicates. The last two arguments are ignored.
    int LoadGroupResult(const std::vector<std::string>& paths, const unsigned long long& maxPeps,
                        const double& maxFinalScore);

    // ---- Merging results: result/merge_results.cpp ----

    /// Same peptide: masses within 0.0001 Da, equal sequences, and equal modifications (by name) at
    /// equal positions.
    bool _equal_res(const CPepRes& a, const CPepRes& b) const;
    /// Drops duplicates from a sorted list. The first of equal candidates stays and takes over the
    /// others' protein hits, a target's decoy flag and the larger m_ucAuxMax. Only neighbours with
    /// one score (to four decimals, truncated) are compared.
    void RemoveRedundancy(std::vector<CPepRes>& peps) const;
    /// Sorts every spectrum's candidates by CPepRes::FinalScoreGreater and drops duplicates.
    void RemoveRedundancy();
    /// Concatenates files of any size, in blocks. Returns the status of closing: false is success.
    /// Inputs are removed, if asked for, only after the output was closed without an error. An
    /// input that does not exist is skipped with a warning. After a failed write, for an input that
    /// cannot be read, and when the output is one of the inputs (then nothing is touched), an alert
    /// names the file, true is returned and every input stays; the incomplete output is removed.
    /// An output that cannot be opened ends the process with status 1.
    bool MergeFiles(const std::vector<std::string>& inputs, const std::string& output,
                    bool removeInputs) const;
    /// Merges the engine's result files of all batches so far, output name + ".<batch>." + ext,
    /// into output name + "." + ext, all under the output path, and removes them.
    void MergeSubRes(const std::string& ext) const;

    // ---- Writing results: result/write_results.cpp ----

    /// Writes m_mapPSMRes as a result file; the second argument is ignored. A file that cannot be
    /// opened ends the process with status 1; one that cannot be written completely is an alert and
    /// is removed.
    void WriteFinalResult(const std::string& path, const double& unused) const;
    /// Writes m_mapPSMRes into an open file, the candidates of the first m_tPepNum ranks of each
    /// spectrum, spectra in byte order of their titles. Equal scores (to four decimals, rounded)
    /// share a rank. The stream's error indicator tells of a failed write.
    void OutputRes(std::FILE* file) const;

private:
    void DropModAddresses();
    void SortAndClean(bool (*order)(const CPepRes&, const CPepRes&));
};

}  // namespace tessel
