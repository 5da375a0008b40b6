#!/usr/bin/env bash
# Derives oneMKL's package source from samples of other machines' sources and compares with what is expected.
#
#   apt_source_test.sh LIBRARY
set -euo pipefail
# shellcheck source=scripts/lib/apt_source.sh
. "$1"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
cases=0

# A machine without sources.
machine() {
    rm -rf "$work/apt"
    mkdir -p "$work/apt/sources.list.d"
    printf 'ID=%s\n%s' "$1" "${2:+ID_LIKE=$2
}" >"$work/os-release"
}
sources() { cat >"$work/apt/$1"; }

# Compares what is derived with standard input.
expect() {
    local name=$1 expected
    expected=$(cat)
    cases=$((cases + 1))
    if ! APT_ETC=$work/apt OS_RELEASE=$work/os-release write_component_source "$work/derived"; then
        [ -z "$expected" ] || { echo "$name: nothing was derived"; failed=1; }
        return
    fi
    # Stanzas are separated by empty lines; how many does not matter.
    if ! diff <(printf '%s\n' "$expected") <(cat -s "$work/derived" | sed -e '${/^$/d}'); then
        echo "$name: derived (right) is not what is expected (left)"
        failed=1
    fi
}

machine debian
sources sources.list.d/debian.sources <<'S'
Types: deb deb-src
# a comment that a mirror's installer left
URIs: http://mirror.example/debian
Suites: bookworm bookworm-updates
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg

Types: deb
URIs: http://mirror.example/debian-security
Suites: bookworm-security
Components: main contrib
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
S
expect 'two stanzas, comments, several suites' <<'S'
Types: deb
URIs: http://mirror.example/debian
Suites: bookworm bookworm-updates
Components: main non-free
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg

Types: deb
URIs: http://mirror.example/debian-security
Suites: bookworm-security
Components: main non-free
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
S

machine debian
sources sources.list.d/debian.sources <<'S'
Types: deb
URIs: http://mirror.example/debian
Suites: bookworm
Components: main non-free non-free-firmware
S
expect 'the component is there already' <<'S'
Types: deb
URIs: http://mirror.example/debian
Suites: bookworm
Components: main non-free
S

machine debian
sources sources.list.d/debian.sources <<'S'
Enabled: no
Types: deb
URIs: http://old.example/debian
Suites: bullseye
Components: main

Types: deb-src
URIs: http://mirror.example/debian
Suites: bookworm
Components: main

types: deb
uris: http://mirror.example/debian
suites:
 bookworm
 bookworm-updates
components: main
 contrib
signed-by:
 -----BEGIN PGP PUBLIC KEY BLOCK-----
 .
 mQINBGPL
 -----END PGP PUBLIC KEY BLOCK-----
S
expect 'disabled and source entries go, fields over several lines stay' <<'S'
Types: deb
uris: http://mirror.example/debian
suites:
 bookworm
 bookworm-updates
Components: main non-free
signed-by:
 -----BEGIN PGP PUBLIC KEY BLOCK-----
 .
 mQINBGPL
 -----END PGP PUBLIC KEY BLOCK-----
S

machine debian
sources sources.list <<'S'
# deb cdrom:[Debian GNU/Linux 12]/ bookworm main
#deb http://disabled.example/debian bookworm main
deb http://mirror.example/debian bookworm main contrib # the nearest
deb-src http://mirror.example/debian bookworm main
  deb [ arch=amd64,i386 signed-by=/usr/share/keyrings/debian-archive-keyring.gpg ] http://mirror.example/debian bookworm-updates main
deb [trusted=yes] http://mirror.example/debian-security bookworm-security main non-free
deb http://mirror.example/debian bookworm contrib
S
expect 'one-line format with options, comments and other types' <<'S'
Types: deb
URIs: http://mirror.example/debian
Suites: bookworm
Components: main non-free

Types: deb
URIs: http://mirror.example/debian
Suites: bookworm-updates
Components: main non-free
Architectures: amd64 i386
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg

Types: deb
URIs: http://mirror.example/debian-security
Suites: bookworm-security
Components: main non-free
Trusted: yes
S

machine debian
sources sources.list.d/debian.sources <<'S'
Types: deb
URIs: http://mirror.example/debian
Suites: bookworm
Components: main
S
printf 'deb https://tools.example/apt stable main' | sources sources.list.d/tools.list
expect "another vendor's source does not take part" <<'S'
Types: deb
URIs: http://mirror.example/debian
Suites: bookworm
Components: main non-free
S

machine debian
sources sources.list <<'S'
deb http://packages.example/mirror bookworm main
S
expect 'a mirror that does not bear the name of the distribution' <<'S'
Types: deb
URIs: http://packages.example/mirror
Suites: bookworm
Components: main non-free
S

machine ubuntu debian
sources sources.list.d/ubuntu.sources <<'S'
Types: deb
URIs: http://mirror.example/ubuntu/
Suites: noble noble-updates
Components: main universe restricted
Signed-By: /usr/share/keyrings/ubuntu-archive-keyring.gpg
S
expect "Ubuntu's component is multiverse" <<'S'
Types: deb
URIs: http://mirror.example/ubuntu/
Suites: noble noble-updates
Components: main multiverse
Signed-By: /usr/share/keyrings/ubuntu-archive-keyring.gpg
S

machine debian
sources sources.list.d/tools.sources <<'S'
Types: deb
URIs: https://tools.example/debian
Suites: stable
Components: tools
S
expect 'nothing to derive a source from' </dev/null

[ "$cases" = 8 ] || { echo "$cases cases ran"; failed=1; }
[ "$failed" = 0 ] && echo "$cases machines"
exit "$failed"
