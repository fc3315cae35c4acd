#include "LinkedObjects.h"

namespace KORVA::HOST
{
std::span<LinkedFunction const> LinkedFunctions() { return {}; }
} // namespace KORVA::HOST
