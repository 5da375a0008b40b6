# Derives a package source for the component that holds oneMKL from the machine's own source.

# Reads sources in the one-line format and prints those of type deb as deb822 stanzas.
#   deb [signed-by=KEY arch=amd64] ADDRESS SUITE COMPONENT...
one_line_to_deb822() {
    awk '
        BEGIN {
            field["signed-by"] = "Signed-By"; field["arch"] = "Architectures"; field["trusted"] = "Trusted"
            field["check-valid-until"] = "Check-Valid-Until"
        }
        $1 == "deb" {
            sub(/[ \t]#.*/, "")
            i = 2; count = 0
            if ($i ~ /^\[/) {
                options = ""
                while (i <= NF) { options = options " " $i; if ($i ~ /\]$/) { i++; break } i++ }
                gsub(/[][]/, " ", options)
                count = split(options, option, " ")
            }
            address = $i; suite = $(i + 1); components = ""
            for (k = i + 2; k <= NF; k++) components = components " " $k
            printf "Types: deb\nURIs: %s\nSuites: %s\nComponents:%s\n", address, suite, components
            for (k = 1; k <= count; k++) {
                equals = index(option[k], "=")
                name = substr(option[k], 1, equals - 1); value = substr(option[k], equals + 1)
                gsub(/,/, " ", value)
                if (name in field) printf "%s: %s\n", field[name], value
            }
            printf "\n"
        }' "$@"
}

# Reads deb822 stanzas from standard input and prints the distribution's own: enabled, of type deb, with the component
# main, and named after the distribution by their address or key. Where none is named so, as behind a company's mirror,
# all with main are printed. Their component line becomes main and COMPONENT.
with_component() {
    local component=$1
    awk -v component="$component" '
        function end_of_stanza(   i, text) {
            if (is_deb && has_main && enabled) {
                text = ""
                for (i = 1; i <= count; i++) text = text line[i] "\n"
                if (is_own) own = own text "\n"
                else other = other text "\n"
            }
            count = 0; is_deb = 0; has_main = 0; enabled = 1; is_own = 0; field = ""
        }
        BEGIN { end_of_stanza() }
        { sub(/\r$/, "") }
        /^#/ { next }
        /^[ \t]*$/ { end_of_stanza(); next }
        {
            # A line that begins with a blank continues the field before it.
            continued = /^[ \t]/
            if (!continued) { field = tolower($0); sub(/:.*/, "", field) }
            value = $0
            if (!continued) sub(/^[^:]*:/, "", value)
            words = " " tolower(value) " "
            gsub(/[ \t]+/, " ", words)
            if (field == "types") is_deb = is_deb || index(words, " deb ")
            if (field == "enabled" && words ~ / (no|false|0|off|without|disable) /) enabled = 0
            if (field == "components") has_main = has_main || index(words, " main ")
            if ((field == "uris" || field == "signed-by") && words ~ /debian|ubuntu/) is_own = 1
            if (field == "types") { if (continued) next; $0 = "Types: deb" }
            if (field == "components") { if (continued) next; $0 = "Components: main " component }
            line[++count] = $0
        }
        END { end_of_stanza(); printf "%s", own == "" ? other : own }'
}

# Prints the name that the distribution gives to the component that holds oneMKL: Ubuntu's and its descendants' is
# multiverse, Debian's non-free.
onemkl_component() {
    local release=${OS_RELEASE:-/etc/os-release}
    if grep -qE '^ID(_LIKE)?=.*ubuntu' "$release" 2>/dev/null; then printf 'multiverse\n'; else printf 'non-free\n'; fi
}

# Writes to FILE a deb822 source with main and the component that holds oneMKL, derived from the machine's sources.
# Fails when there is none to derive it from. Tests set APT_ETC and OS_RELEASE to files of their own.
write_component_source() {
    local file=$1 etc=${APT_ETC:-/etc/apt} source
    {
        for source in "$etc"/sources.list "$etc"/sources.list.d/*.list; do
            # Each on its own, so that a last line without an end does not run into the next file.
            if [ -f "$source" ]; then one_line_to_deb822 "$source"; fi
        done
        for source in "$etc"/sources.list.d/*.sources; do
            if [ -f "$source" ]; then cat "$source"; printf '\n\n'; fi
        done
    } | with_component "$(onemkl_component)" >"$file"
    [ -s "$file" ]
}
