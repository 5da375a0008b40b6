// oneMKL reports a bad argument through a handler that prints to standard output. A library prints nothing,
// and the driver's info value says the same, so silent handlers are linked in the place of the archive's.
// They are hidden like everything of oneMKL's: a program's own xerbla_ is left alone.

extern "C" {

void xerbla(char const* /*routine*/, long long const* /*argument*/, int /*length*/);
void xerbla_(char const* /*routine*/, long long const* /*argument*/, int /*length*/);
void XERBLA(char const* /*routine*/, long long const* /*argument*/, int /*length*/);

void xerbla(char const* /*routine*/, long long const* /*argument*/, int /*length*/) {}
void xerbla_(char const* /*routine*/, long long const* /*argument*/, int /*length*/) {}
void XERBLA(char const* /*routine*/, long long const* /*argument*/, int /*length*/) {}

} // extern "C"
