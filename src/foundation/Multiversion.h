#pragma once

/// TVNMATH_MULTIVERSION compiles a loop for several instruction sets, of which the loader picks the machine's
/// best: while the data is in the first-level cache that is worth a factor of two and more over the baseline.
/// No version fuses multiplications and additions, so all of them give the same bits.
///
/// TVNMATH_EACH_VERSION(DEFINE) does the same for a function that is written over registers of a given width:
/// DEFINE(ATTRIBUTE, WIDTH) expands to its definition, and WIDTH is the number of doubles in a register.
///
/// Use both on functions with internal linkage only: the loader's entry points of others would be exported,
/// whatever their visibility.
///
/// clang 14 does not take the attribute on function templates, and the loader runs its resolvers before the
/// sanitizers are ready; there the baseline is enough.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__OPTIMIZE__)                 \
    && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#    define TVNMATH_MULTIVERSION __attribute__((target_clones("avx512f", "avx2", "default")))
#    define TVNMATH_EACH_VERSION(DEFINE)                                                                     \
        DEFINE(__attribute__((target("avx512f"))), 8)                                                        \
        DEFINE(__attribute__((target("avx2"))), 4)                                                           \
        DEFINE(__attribute__((target("default"))), 2)
#else
#    define TVNMATH_MULTIVERSION
#    define TVNMATH_EACH_VERSION(DEFINE) DEFINE(, 2)
#endif

/// TVNMATH_INDEPENDENT_ITERATIONS tells the compiler that no iteration of the next loop reads what another
/// one writes.
#if defined(__clang__)
#    define TVNMATH_INDEPENDENT_ITERATIONS _Pragma("clang loop vectorize(assume_safety)")
#elif defined(__GNUC__)
#    define TVNMATH_INDEPENDENT_ITERATIONS _Pragma("GCC ivdep")
#else
#    define TVNMATH_INDEPENDENT_ITERATIONS
#endif
