#include <Math/ComplexVectorView2.h>

template class Tervane::System::Expected<Tervane::Math::ComplexVectorView2, Tervane::System::ErrorCode2>;
