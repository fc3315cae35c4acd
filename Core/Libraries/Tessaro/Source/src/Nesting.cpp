#include "Nesting.h"

#include <tessio/TessIO/RecordFormat.h>

#include <stdexcept>

namespace KORVA::IO
{
thread_local int Nesting::sDepth = 0;

Nesting::Nesting()
{
    if (++sDepth > kMostNestedRecords)
    {
        --sDepth;
        throw std::length_error("records nested too deep");
    }
}
} // namespace KORVA::IO
