#include <Math/ViewMatrix.h>

namespace Tervane::Math {

ViewMatrix::~ViewMatrix() = default;

} // namespace Tervane::Math
