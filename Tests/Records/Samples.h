// Record files, laid out by hand, that many tests look at from their side.
#pragma once

#include "Support/Laid.h"
#include <tessio/Records/Tree/Reader.h>

#include <string>
#include <vector>

namespace KORVA::TESTS
{
struct Sample
{
    char const* name;
    /// For `Laid`.
    std::string words;
};

/// A finding that must be there, and the path under which it is found; empty for the file's own.
struct Noticed
{
    RECORDS::Severity severity;
    char const* code;
    int64 offset;
    char const* path;
    char const* words;
};

/// A file and everything that is noticed about it, in the order of the file: findings of what holds others
/// first.
struct FindingRow
{
    char const* name;
    std::string words;
    std::vector<Noticed> findings;
};

/// The kind of an error in one word.
std::string KindOf(RECORDS::Error const& error);

/// Findings of each kind.
std::vector<FindingRow> const& Findings();

/// All that must hold for every file must hold for these: what the page on the format shows, each kind of
/// value, oddities, and the files of `Findings`.
std::vector<Sample> const& Samples();

/// How a result failed: the kind, a blank, the words; empty where it did not.
template <class T>
std::string FailureOf(RECORDS::Result<T> const& result)
{
    return result ? std::string() : KindOf(result.error()) + " " + result.error().words;
}

/// To read a file in that order, without limits.
RECORDS::ReadOptions OptionsOf(Order order);

/// The tree of such a file.
RECORDS::RecordTree Read(Order order, Bytes const& content);

/// The samples, every beginning of the file with one of each class, and that file with each byte changed, by
/// each of `changes` in turn. `visit(content, order, name)`.
template <class Visit>
void ForEachFile(std::initializer_list<int> changes, Visit const& visit)
{
    for (Order const order : kOrders)
    {
        for (Sample const& sample : Samples())
            visit(Laid(order, sample.words), order, std::string(sample.name));
        Bytes const every = Laid(order, kEvery);
        for (std::size_t size = 0; size < every.size(); ++size)
            visit(Bytes(every.begin(), every.begin() + static_cast<std::ptrdiff_t>(size)), order,
                  "cut after " + std::to_string(size));
        for (std::size_t at = 0; at < every.size(); ++at)
            for (int const change : changes)
            {
                Bytes flipped = every;
                flipped[at] = static_cast<unsigned char>(flipped[at] ^ change);
                visit(flipped, order, "changed at " + std::to_string(at) + " by " + std::to_string(change));
            }
    }
}
} // namespace KORVA::TESTS
