// A batch is all that is in memory of a large file. The small sister of scripts/test-scale.sh: it
// counts what this program takes from the heap.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "tessel/condition/condition.h"
#include "tests/scale/large_files.h"
#include "tests/support/captured.h"
#include "tests/support/temp_folder.h"

namespace {

std::atomic<std::size_t> g_held{0};
std::atomic<std::size_t> g_most{0};

constexpr std::size_t kHead = 16;  // in front of every block, for its size

}  // namespace

void* operator new(std::size_t size) {
    void* const block = std::malloc(size + kHead);
    if (block == nullptr) throw std::bad_alloc();
    *static_cast<std::size_t*>(block) = size;
    const std::size_t held = g_held += size;
    if (held > g_most) g_most = held;
    return static_cast<char*>(block) + kHead;
}

void operator delete(void* pointer) noexcept {
    if (pointer == nullptr) return;
    void* const block = static_cast<char*>(pointer) - kHead;
    g_held -= *static_cast<std::size_t*>(block);
    std::free(block);
}

void operator delete(void* pointer, std::size_t) noexcept {
    operator delete(pointer);
}

namespace tessel {
namespace {

// The most that is held at once during an action, above what was held before.
template <class Action>
std::size_t heap_of(Action action) {
    const std::size_t before = g_held;
    g_most = before;
    action();
    return g_most - before;
}

std::size_t heap_of_loading(const std::string& type, const std::string& path, std::size_t batch,
                            std::uint64_t entries) {
    return heap_of([&] {
        CCondition condition;
        condition.m_strMSMSType = type;
        condition.m_strMSMSPath = path;
        condition.m_nMaxSpec = batch;
        std::uint64_t loaded = 0;
        for (bool more = true; more;) {
            more = condition.LoadSpectra(false);
            loaded += condition.m_vSpectra.size();
        }
        EXPECT_EQ(loaded, entries);
    });
}

constexpr std::size_t kBytes = 12'000'000;
constexpr std::size_t kBuffers = 3'000'000;
// Peaks, index and title of one spectrum take less, and so do the lists of them while they grow.
constexpr std::size_t kSpectrum = 10'000;

TEST(batches, of_mgf_spectra_are_all_that_is_in_memory) {
    const test::CTempFolder folder;
    const std::string path = folder.Path("large.mgf");
    const std::uint64_t spectra = test::write_large_mgf(path, kBytes);
    EXPECT_GT(spectra, 5000U);
    EXPECT_LT(heap_of_loading("MGF", path, 10, spectra), kBuffers + 10 * kSpectrum);
    EXPECT_LT(heap_of_loading("MGF", path, 500, spectra), kBuffers + 500 * kSpectrum);
    EXPECT_GT(heap_of_loading("MGF", path, spectra, spectra), 5000 * kSpectrum / 2);
}

TEST(batches, of_zb2_scans_are_all_that_is_in_memory) {
    const test::CTempFolder folder;
    const std::string path = folder.Path("large.zb2");
    const std::uint64_t spectra = test::write_large_zb2(path, kBytes);
    EXPECT_GT(spectra, 5000U);
    EXPECT_LT(heap_of_loading("ZB2", path, 10, spectra), kBuffers + 10 * kSpectrum);
    EXPECT_LT(heap_of_loading("ZB2", path, 500, spectra), kBuffers + 500 * kSpectrum);
}

// Beside the batch, room for as many entries as it could hold.
TEST(batches, of_residues_are_all_that_is_in_memory_of_a_database) {
    const test::CTempFolder folder;
    const std::string path = folder.Path("large.fasta");
    const std::uint64_t proteins = test::write_large_fasta(path, kBytes);
    const std::size_t entries = proteins * sizeof(CProtein);
    for (const std::size_t residues : {std::size_t{1000}, std::size_t{1'000'000}}) {
        CCondition condition;
        condition.m_strFastaPath = path;
        condition.m_tMaxProLen = residues;
        EXPECT_LT(heap_of([&] { condition.SetFastaPath(); }), kBuffers + entries + 2 * residues);
        EXPECT_EQ(folder.Read("large.fasta_td.fasta").size(), test::target_decoy_size(proteins));
        condition.m_cFastaLoader.Reset();
        EXPECT_LT(heap_of([&] {
                      while (condition.m_cFastaLoader.ReadNextBatch()) {
                      }
                  }),
                  kBuffers + 2 * entries + 2 * residues);
        test::set_file_age(condition.m_strInputFastaPath, 1000);
    }
}

TEST(batches, do_not_matter_when_files_are_merged) {
    const test::CTempFolder folder;
    const std::string one = folder.Path("one");
    const std::string two = folder.Path("two");
    test::write_large_results(one, kBytes);
    test::write_large_results(two, kBytes);
    const CCondition condition;
    EXPECT_LT(heap_of([&] {
                  EXPECT_FALSE(condition.MergeFiles({one, two}, folder.Path("merged"), true));
              }),
              kBuffers);
}

}  // namespace
}  // namespace tessel
