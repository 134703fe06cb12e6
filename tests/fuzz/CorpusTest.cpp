#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/dat/DATFuzz.h"
#include "fuzz/jpeg/JPEGFuzz.h"
#include "fuzz/nifti/NIFTIFuzz.h"
#include "fuzz/png/PNGFuzz.h"
#include "fuzz/transfer/TransferFuzz.h"

namespace
{

using Bytes = std::vector<std::uint8_t>;

/// The files of one format's corpus; there are at least three of each.
std::vector<Bytes> corpus(const std::string &format)
{
    std::vector<Bytes> files;
    for(const auto &entry : std::filesystem::directory_iterator(std::string(FUZZ_CORPUS) + "/" + format))
    {
        std::ifstream in(entry.path(), std::ios::binary);
        files.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    EXPECT_GE(files.size(), 3u) << format;
    return files;
}

/// Runs each file as it is, cut off at every byte, and with every byte inverted in turn.
template <class Entry>
void replay(const std::string &format, Entry entry)
{
    for(const Bytes &file : corpus(format))
    {
        entry(file.data(), file.size());
        for(std::size_t i = 0; i < file.size(); ++i)
        {
            // A copy of just that size, so that a sanitizer sees the end.
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(i));
            entry(cut.data(), cut.size());
            Bytes changed = file;
            changed[i] = static_cast<std::uint8_t>(~changed[i]);
            entry(changed.data(), changed.size());
        }
    }
}

} // namespace

TEST(Corpus, ThePNGReaderKeepsItsPromisesOverTheCorpusAndItsDamagedCopies)
{
    replay("png", fuzzPNG);
}

TEST(Corpus, TheJPEGReaderKeepsItsPromisesOverTheCorpusAndItsDamagedCopies)
{
    replay("jpeg", fuzzJPEG);
}

TEST(Corpus, TheNIfTIReaderKeepsItsPromisesOverTheCorpusAndItsDamagedCopies)
{
    replay("nifti", fuzzNIFTI);
}

TEST(Corpus, TheDATReaderKeepsItsPromisesOverTheCorpusAndItsDamagedCopies)
{
    replay("dat", fuzzDAT);
}

TEST(Corpus, TheReaderOfTransferFunctionsKeepsItsPromisesOverTheCorpusAndItsDamagedCopies)
{
    replay("transfer", fuzzTransfer);
}
