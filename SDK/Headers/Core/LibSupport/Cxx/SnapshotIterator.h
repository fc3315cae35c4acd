// Goes over what a container held at one moment.
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace KORVA::CXX
{
/// A forward iterator that owns, with its copies, what it goes over. Ends at `std::default_sentinel`.
template <class T>
class SnapshotIterator
{
public:
    /// What it goes over.
    using value_type = T;
    /// The distance between two.
    using difference_type = std::ptrdiff_t;
    /// Elements can't be changed.
    using reference = T const&;
    /// To an element.
    using pointer = T const*;
    /// It can be copied and gone over again.
    using iterator_category = std::forward_iterator_tag;

    /// At the end of nothing.
    SnapshotIterator() = default;
    /// At the first of `elements`.
    explicit SnapshotIterator(std::vector<T> elements)
        : mElements(std::make_shared<std::vector<T> const>(std::move(elements)))
    {}

    /// The element, borrowed while this iterator or a copy of it lives.
    T const& operator*() const { return (*mElements)[mIndex]; }
    /// Into the element.
    T const* operator->() const { return &**this; }

    /// On to the next.
    SnapshotIterator& operator++()
    {
        ++mIndex;
        return *this;
    }
    /// On to the next; the result is where it was.
    SnapshotIterator operator++(int)
    {
        SnapshotIterator before = *this;
        ++mIndex;
        return before;
    }

    /// Whether both are at the same element of the same snapshot.
    friend bool operator==(SnapshotIterator const&, SnapshotIterator const&) = default;
    /// Whether the end is reached.
    friend bool operator==(SnapshotIterator const& at, std::default_sentinel_t)
    {
        return !at.mElements || at.mIndex == at.mElements->size();
    }

private:
    std::shared_ptr<std::vector<T> const> mElements;
    std::size_t mIndex = 0;
};
} // namespace KORVA::CXX
