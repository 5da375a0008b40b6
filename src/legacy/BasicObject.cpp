#include <Math/BasicObject.h>

namespace Tervane::System {

template class BasicObject<Math::AbstractMatrix>;
template class BasicObject<Math::AbstractVector>;

} // namespace Tervane::System
