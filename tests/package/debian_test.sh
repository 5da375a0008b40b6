#!/usr/bin/env bash
# Makes the Debian packages, looks at what they say, and runs a program in a bare root that holds no more than the
# run-time package and what it depends on. Exits with 77 where nobody may change the root.
#
#   debian_test.sh CPACK BUILD_DIR WORK_DIR COMPILER VERSION THREADING
set -euo pipefail
cpack=$1 build=$2 work=$3 compiler=$4 version=$5 threading=$6
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
rm -rf "$work"
mkdir -p "$work"

fail() { printf '%s\n' "$*" >&2; exit 1; }
field() { dpkg-deb -f "$1" "$2"; }

"$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/cpack.log" 2>&1 \
    || { cat "$work/cpack.log" >&2; fail 'cpack failed'; }
architecture=$(dpkg --print-architecture)
runtime=$work/packages/libtvnmath${version%%.*}_${version}_$architecture.deb
development=$work/packages/libtvnmath-dev_${version}_$architecture.deb

# The OpenMP runtime is the one of oneMKL's threading layer, and oneMKL itself is inside.
needed=$(field "$runtime" Depends)
case $threading in
    intel_thread) openmp=libomp5 ;;
    gnu_thread) openmp=libgomp1 ;;
    *) openmp=libtbb12 ;;
esac
for package in libc6 'libstdc++6' libtbb12 "$openmp"; do
    [[ $needed == *"$package"* ]] || fail "the run-time package depends on $needed, not on $package"
done
[[ $needed != *mkl* ]] || fail "the run-time package depends on oneMKL: $needed"
[ "$(field "$development" Depends)" = "libtvnmath${version%%.*} (= $version)" ] || fail 'the packages may be mixed'

bare=$work/bare
dpkg-deb -x "$runtime" "$bare"
[ -z "$(find "$bare" -name '*.h' -o -name '*.so' -o -name '*.cmake' -o -name '*.pc')" ] || fail 'development files are in the run-time package'
for text in LICENSE:'MIT License' notices/oneMKL.txt:'Intel Simplified Software License' notices/oneTBB.txt:'Apache-2' \
    notices/Highway.txt:'Apache-2'; do
    grep -qiF "${text#*:}" "$bare/usr/share/doc/tvnmath/${text%%:*}" || fail "${text%%:*} is missing"
done

# Both packages together serve to build a program.
dpkg-deb -x "$runtime" "$work/both"
dpkg-deb -x "$development" "$work/both"
mapfile -t flags < <(PKG_CONFIG_LIBDIR=$(dirname "$(find "$work/both" -name tvnmath.pc)") pkg-config --cflags --libs tvnmath | xargs -n 1)
for source in main math_only; do
    "$compiler" -std=c++20 "$here/consumer/$source.cpp" -o "$bare/$source" "${flags[@]}"
done

# What the run-time package depends on, with what that depends on in turn, as it is installed here.
packages=()
waiting=()
depends_of() { sed -e 's/([^)]*)//g' -e 's/|[^,]*//g' -e 's/:any//g' -e 's/,/\n/g' <<<"$1" | sed -e 's/^[ \t]*//' -e 's/[ \t]*$//' -e '/^$/d'; }
mapfile -t waiting < <(depends_of "$needed")
while [ "${#waiting[@]}" -gt 0 ]; do
    package=${waiting[0]}
    waiting=("${waiting[@]:1}")
    case " ${packages[*]} " in *" $package "*) continue ;; esac
    packages+=("$package")
    mapfile -t -O "${#waiting[@]}" waiting < <(depends_of "$(dpkg-query -W -f '${Depends}, ${Pre-Depends}' "$package" 2>/dev/null || true)")
done
# /lib and its kin are links to what is below /usr, as on the machine itself.
for folder in lib lib64; do [ ! -L "/$folder" ] || { mkdir -p "$bare/usr/$folder"; ln -s "usr/$folder" "$bare/$folder"; }; done
for package in "${packages[@]}"; do
    while IFS= read -r file; do
        case $file in */lib/* | */lib64/*) ;; *) continue ;; esac
        [ -d "$file" ] && [ ! -L "$file" ] && continue
        [ -e "$file" ] || continue
        mkdir -p "$bare$(dirname "$file")"
        cp -a "$file" "$bare$file"
    done < <(dpkg -L "$package" 2>/dev/null)
done
[ ! -e "$bare/usr/lib/x86_64-linux-gnu/libmkl_core.so" ] || fail 'the bare root holds oneMKL'

enter=(chroot)
if [ "$(id -u)" != 0 ]; then enter=(unshare --map-root-user chroot); fi
if ! PATH=/usr/sbin:$PATH "${enter[@]}" / /bin/true 2>/dev/null; then
    echo 'nobody may change the root here'
    exit 77
fi
for program in main math_only; do
    env -i PATH=/usr/sbin:/usr/bin:/bin "${enter[@]}" "$bare" "/$program" || fail "$program fails in a root with ${packages[*]}"
done
echo "runs in a root with ${packages[*]}"
