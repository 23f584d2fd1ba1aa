#!/bin/sh
# check_packaging.sh PACKAGE.deb: passes the package to lintian, and what it installs to the tools that judge it: menu
# entry, software-centre metadata, manual page, icons. Then looks whether everything is where the others expect it.
# Says what is wrong, and exits 1 when anything is.
set -u
if [ $# -ne 1 ] || [ ! -f "$1" ]; then
    echo "usage: check_packaging.sh PACKAGE.deb" >&2
    exit 2
fi
failed=0

# check CLAIM COMMAND...: the claim holds when the command succeeds
check() {
    claim=$1
    shift
    if "$@"; then
        echo "ok: $claim"
    else
        failed=$((failed + 1))
        echo "FAILED: $claim"
    fi
}

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
dpkg-deb -x "$1" "$tree/root" || exit 1
root=$tree/root
share=$root/usr/share
private=$root/usr/lib/kestrel-map-tool
entry=$share/applications/kestrel-map-tool.desktop
metainfo=$share/metainfo/org.kestrelmaptool.editor.metainfo.xml

field() {
    dpkg-deb -f "$package" "$1"
}

entry_value() {
    sed -n "s/^$1=//p" "$entry"
}

# Warnings are faults here too, but hints are not.
passes_lintian() {
    lintian --allow-root --no-cfg --fail-on error,warning --tag-display-limit 0 "$package"
}

# Everything that the formatter has to say is on its standard error.
man_pages_are_clean() {
    complaints=$(for page in kestrel-map-tool kestrel-map; do
        LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -l "$share/man/man1/$page.1.gz" 2>&1 >/dev/null
    done)
    [ -z "$complaints" ] || { echo "$complaints"; false; }
}

depends_on() {
    field Depends | tr ',' '\n' | grep -q "^ *$1\( \|$\)" || { echo "Depends lacks $1"; false; }
}

control_is_complete() {
    for name in Package Version Architecture Maintainer Section Priority Installed-Size Depends Description; do
        [ -n "$(field $name)" ] || { echo "no $name"; return 1; }
    done
    for needed in libc6 libqt6widgets6 libfreetype6 libpng16-16 libpulse0 libxcb1 fonts-liberation; do
        depends_on $needed || return 1
    done
}

menu_command_is_installed() {
    command=$(entry_value Exec)
    [ -x "$root$command" ] && sh -n "$root$command"
}

# The launcher must start the program that lies beside it, in the documents folder, in the home folder where there is
# none: tried with a program that only says where it is.
launcher_starts_among_documents() {
    mkdir -p "$tree/try/home/Papers" "$tree/try/bin" "$tree/try/no home"
    cp "$private/start-in-documents" "$tree/try/"
    printf '#!/bin/sh\npwd -P\n' >"$tree/try/kestrel-map-tool"
    # shellcheck disable=SC2016 # the home folder is that of the one who runs it
    printf '#!/bin/sh\n[ "$1" = DOCUMENTS ] && echo "$HOME/Papers"\n' >"$tree/try/bin/xdg-user-dir"
    chmod +x "$tree/try/kestrel-map-tool" "$tree/try/bin/xdg-user-dir"
    where=$(cd / && HOME="$tree/try/home" PATH="$tree/try/bin:$PATH" "$tree/try/start-in-documents")
    [ "$where" = "$(cd "$tree/try/home/Papers" && pwd -P)" ] || { echo "started in $where"; return 1; }
    where=$(cd / && HOME="$tree/try/no home" PATH="$tree/try/bin:$PATH" "$tree/try/start-in-documents")
    [ "$where" = "$(cd "$tree/try/no home" && pwd -P)" ] || { echo "started in $where"; return 1; }
}

guide_lies_beside_program() {
    program=$(readlink -f "$root/usr/bin/kestrel-map-tool")
    [ "$program" = "$(readlink -f "$private")/kestrel-map-tool" ] && [ -x "$program" ] &&
        [ "$(head -c 5 "$(dirname "$program")/Guide - Map Tool.pdf")" = "%PDF-" ]
}

program_is_stripped() {
    file -b "$private/kestrel-map-tool" | grep -q ', stripped'
}

# Every command of its help is in its manual page, and bash completes it.
companion_is_complete() {
    program=$root/usr/bin/kestrel-map
    "$program" --version >/dev/null || return 1
    for command in $("$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
        zgrep -q "kestrel-map $command" "$share/man/man1/kestrel-map.1.gz" || { echo "no $command in the page"; return 1; }
        # shellcheck disable=SC2016 # for the shell that completes
        bash -c '. "$1"; COMP_WORDS=(kestrel-map "$2"); COMP_CWORD=1; _kestrel_map kestrel-map "$2" kestrel-map
            [ "${COMPREPLY[0]}" = "$2" ]' sh "$share/bash-completion/completions/kestrel-map" "$command" ||
            { echo "no completion of $command"; return 1; }
    done
    ! ldd "$program" | grep -q 'libQt\|libpulse\|libxcb'
}

samples_are_pairs() {
    for number in 101 102 103; do
        for type in bmp dat; do
            [ -s "$share/kestrel-map-tool/samples/Map${number}c.$type" ] || { echo "no Map${number}c.$type"; return 1; }
        done
    done
}

icons_have_their_sizes() {
    name=$(entry_value Icon)
    for side in 16 32 48 128 256; do
        file -b "$share/icons/hicolor/${side}x$side/apps/$name.png" | grep -q "^PNG image data, $side x $side," ||
            { echo "no icon of $side pixels"; return 1; }
    done
}

metadata_names_menu_entry() {
    grep -q "<launchable type=\"desktop-id\">$(basename "$entry")</launchable>" "$metainfo" &&
        grep -q "<release version=\"$(field Version)\"" "$metainfo"
}

package=$1
check "control fields are complete" control_is_complete
check "lintian has no error and no warning" passes_lintian
check "the menu entry is valid" desktop-file-validate --no-hints "$entry"
check "the menu entry's command is installed" menu_command_is_installed
check "the launcher starts the program among the documents" launcher_starts_among_documents
check "the metadata is valid" appstreamcli validate --no-net --no-color "$metainfo"
check "the installed tree fits its metadata" appstreamcli validate-tree --no-net --no-color "$root"
check "the metadata names menu entry and version" metadata_names_menu_entry
check "the manual pages are clean" man_pages_are_clean
check "the companion runs and names its commands everywhere" companion_is_complete
check "the icons have their sizes" icons_have_their_sizes
check "the guide lies beside the program" guide_lies_beside_program
check "the program is stripped" program_is_stripped
check "the sample maps are complete" samples_are_pairs
[ "$failed" -eq 0 ] || { echo "$failed faults in $package"; exit 1; }
