#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the files of the tar ball that it is part of, or takes away again what it has installed.
set -eu
export LC_ALL=C # one order for sort and comm
umask 022

usage="usage: ./install.sh [--prefix DIR] [--uninstall]

Installs plug-in, kestrum, man pages and completion below DIR (/usr/local by default), the measured head and its rooms to
/opt/Tenmarsh/OrvaneVSTPlugin, and the manual to /usr/share/Lorimond: the plug-in looks there and nowhere else. A data set
that you have chosen stays in use. Needs root. --uninstall takes all of it away, but no set of your own."

here=$(dirname "$(readlink -f "$0")")
prefix=/usr/local
uninstall=no
root=${DESTDIR:-} # for tests and images: everything goes below it
fail() {
    echo "install.sh: $1" >&2
    exit 1
}
while [ $# -gt 0 ]; do
    case $1 in
    -h | --help)
        echo "$usage"
        exit 0
        ;;
    --prefix)
        [ $# -ge 2 ] || fail "--prefix needs a folder."
        prefix=$2
        shift
        ;;
    --uninstall) uninstall=yes ;;
    *) fail "\"$1\" is unknown: see ./install.sh --help." ;;
    esac
    shift
done
case $prefix in
/*) ;;
*) fail "\"$prefix\" is no full path: give one that begins with /." ;;
esac
prefix=${prefix%/}
list=$prefix/share/orvane-kestrum/installed-files
product=/opt/Tenmarsh/OrvaneVSTPlugin
manual="/usr/share/Lorimond/Orvane KESTRUM/Orvane KESTRUM Manual.pdf"

[ -n "$root" ] || [ "$(id -u)" = 0 ] || fail "this needs root: become root, or run it by sudo."

# The list has one path a line: a file that was put there, or, with a slash at its end, a folder that was made.
files_of() { sed '/\/$/d; /^$/d'; }
folders_of() { sed -n '/\/$/p'; }

# The folders that making this one would make.
missing_above() {
    [ -d "$root$1" ] || {
        missing_above "$(dirname "$1")"
        echo "$1/"
    }
}

# Whether the plug-in's link leads to the folder of a file that standard input names.
leads_to_one() {
    used=$(readlink "$root$product/data" || true)
    case $used in
    "") return 1 ;;
    /*) ;;
    *) used=$product/$used ;;
    esac
    while IFS= read -r file; do
        [ "$used" != "$(dirname "$file")" ] || return 0
    done
    return 1
}

remove_files() { # that standard input names
    while IFS= read -r file; do
        rm -f "$root$file"
        case $file in
        "$product"/sets/*) rmdir "$root$(dirname "$file")" 2>/dev/null || true ;; # or it would be listed as a set
        esac
    done
}

if [ $uninstall = yes ]; then
    [ -f "$root$list" ] || fail "nothing is installed below $prefix: name the folder by --prefix that you have installed to."
    if files_of <"$root$list" | leads_to_one; then
        rm -f "$root$product/data"
    fi
    files_of <"$root$list" | remove_files
    folders=$(folders_of <"$root$list" | sort -r)
    rm -f "$root$list"
    echo "$folders" | while IFS= read -r folder; do
        [ -z "$folder" ] || rmdir "$root$folder" 2>/dev/null || true # others' things may be in it
    done
    echo "Orvane KESTRUM is removed."
    exit 0
fi

# Whoever has unpacked the tar ball, under whatever mask: files are root's, for everybody to read and for nobody else to write.
put() { # FILE DESTINATION
    case $1 in
    bin/* | *.so) mode=755 ;;
    *) mode=644 ;;
    esac
    if [ "$(id -u)" = 0 ]; then
        install -o root -g root -m $mode "$1" "$2"
    else
        install -m $mode "$1" "$2"
    fi
}

# What else lies in the unpacked folder is somebody's own and stays there.
[ -s "$here/file-list" ] || fail "the files to install are not beside it: run it in the unpacked folder."
files=$(cat "$here/file-list")
echo "$files" | while IFS= read -r file; do
    [ -f "$here/$file" ] || fail "$file is missing in $here: unpack the tar ball anew."
done
if [ -z "$root" ] && dpkg-query -W -f '${db:Status-Status}' orvane-kestrum 2>/dev/null | grep -qx installed; then
    fail "Orvane KESTRUM is installed as a Debian package: remove that first (apt remove orvane-kestrum orvane-kestrum-data)."
fi

set_folder=$product/sets/kemar-$(sha256sum "$here/share/orvane-kestrum/sets/kemar/about.json" | cut -c 1-8)
# Where a file of this folder goes.
destination_of() {
    case $1 in
    share/orvane-kestrum/sets/kemar/*) echo "$set_folder/${1##*/}" ;;
    share/Lorimond/*) echo "$manual" ;;
    *) echo "$prefix/$1" ;;
    esac
}

# First what is about to come, so that an installation that breaks off can be taken away, too. What an older version has
# installed stays on the list until it is gone.
folders=$(missing_above "$(dirname "$list")")
mkdir -p "$root$(dirname "$list")" || fail "$(dirname "$list") cannot be made."
coming=$(echo "$files" | while IFS= read -r file; do destination_of "$file"; done | sort)
older=""
if [ -f "$root$list" ]; then
    folders=$(folders_of <"$root$list")
    older=$(echo "$coming" | comm -13 - "$root$list" | files_of)
fi
printf '%s\n' "$coming" "$older" "$folders" | sed '/^$/d' | sort >"$root$list"

echo "$files" | while IFS= read -r file; do
    destination=$(destination_of "$file")
    missing_above "$(dirname "$destination")" >>"$root$list"
    # By one rename: who reads it meanwhile has the old file or the new one.
    { mkdir -p "$root$(dirname "$destination")" && (cd "$here" && put "$file" "$root$destination.new") &&
        mv -f "$root$destination.new" "$root$destination"; } || {
        rm -f "$root$destination.new"
        fail "$destination cannot be written: make room on that disk and run it again, or run ./install.sh --uninstall."
    }
done

# First the link to the new set, by one rename, then the old set goes: a host that starts meanwhile finds either. A link to
# a set of one's own stays; one that is missing or leads to nothing is made anew.
if [ ! -e "$root$product/data" ] || echo "$older" | leads_to_one; then
    rm -f "$root$product/.data.new"
    ln -s "${set_folder#"$product/"}" "$root$product/.data.new"
    mv -T "$root$product/.data.new" "$root$product/data"
fi
echo "$older" | files_of | remove_files
folders=$(folders_of <"$root$list")
printf '%s\n' "$coming" "$folders" | sed '/^$/d' | sort -u >"$root$list"

echo "Orvane KESTRUM is installed below $prefix; \"./install.sh --uninstall\" or"
echo "\"$prefix/bin/kestrum doctor\" are at your service."
missing=$(ldd "$root$prefix/bin/kestrum" "$root$prefix/lib/vst3/Orvane KESTRUM.vst3"/Contents/*/*.so 2>/dev/null |
    sed -n 's/^[[:space:]]*\([^ ]*\) => not found$/\1/p' | sort -u | tr '\n' ' ')
[ -z "$missing" ] || echo "These libraries are missing on this machine: install the packages that hold $missing"
