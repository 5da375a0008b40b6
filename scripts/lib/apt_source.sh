# Derives a package source for the component that holds oneMKL from the machine's own source.

# Prints the component of a distribution, by the name that its sources use for main archives.
component_of() {
    case "$1" in
        *ubuntu*) printf 'multiverse\n' ;;
        *) printf 'non-free\n' ;;
    esac
}

# Reads sources in the one-line format and prints those of a distribution's main component as deb822 stanzas.
#   deb [signed-by=KEY] ADDRESS SUITE COMPONENT...
one_line_to_deb822() {
    awk '
        $1 == "deb" {
            key = ""; i = 2
            if ($i ~ /^\[/) {
                options = ""
                while (i <= NF) { options = options " " $i; if ($i ~ /\]$/) { i++; break } i++ }
                gsub(/[\[\]]/, " ", options)
                n = split(options, option, " ")
                for (k = 1; k <= n; k++) if (option[k] ~ /^signed-by=/) key = substr(option[k], 11)
            }
            address = $i; suite = $(i + 1); components = ""
            for (k = i + 2; k <= NF && $k !~ /^#/; k++) components = components " " $k
            if (components !~ / main( |$)/) next
            printf "Types: deb\nURIs: %s\nSuites: %s\nComponents:%s\n", address, suite, components
            if (key != "") printf "Signed-By: %s\n", key
            printf "\n"
        }' "$@"
}

# Reads deb822 stanzas from standard input and prints the enabled ones of type deb that hold the component main, with
# the wanted component added.
with_component() {
    local component=$1
    awk -v component="$component" '
        function flush_stanza(   i) {
            if (is_deb && has_main && enabled) {
                for (i = 1; i <= count; i++) print line[i]
                print ""
            }
            count = 0; is_deb = 0; has_main = 0; enabled = 1
        }
        BEGIN { flush_stanza() }
        /^#/ { next }
        /^[ \t]*$/ { flush_stanza(); next }
        {
            field = tolower($1)
            if (field == "types:") { is_deb = ($0 ~ /[ \t]deb([ \t]|$)/); $0 = "Types: deb" }
            if (field == "enabled:" && tolower($2) ~ /^(no|false|0)$/) enabled = 0
            if (field == "components:") {
                has_main = ($0 ~ /[ \t]main([ \t]|$)/)
                $0 = "Components: main " component
            }
            line[++count] = $0
        }
        END { flush_stanza() }'
}

# Writes to FILE a deb822 source with main and the wanted component, derived from the machine's sources (or, for tests,
# those below the folder APT_ETC). Fails when there is none to derive it from.
write_component_source() {
    local file=$1 etc=${APT_ETC:-/etc/apt} all
    all=$(
        shopt -s nullglob
        for source in "$etc"/sources.list "$etc"/sources.list.d/*.list; do
            if [ -f "$source" ]; then one_line_to_deb822 "$source"; fi
        done
        for source in "$etc"/sources.list.d/*.sources; do
            cat "$source"
            printf '\n\n'
        done
    )
    # The distribution's own archive is the one whose key or address names it; third-party archives lack the component.
    printf '%s\n' "$all" | with_component "$(component_of "$all")" | awk '
        BEGIN { RS = ""; ORS = "\n\n" }
        tolower($0) ~ /debian|ubuntu/ { print }' >"$file"
    [ -s "$file" ]
}
