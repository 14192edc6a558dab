# Inserted into the postrm of each package that leaves state behind. The state is kept when a package is
# purged: it may be all that tells what happened to an array. The administrator asks for its removal by /etc/hxraid/purge-state.

# others PACKAGE...: which of these are installed or purged later, but for the package that this script is of.
others() {
    dpkg-query -W -f '${Package}:${Architecture} ${db:Status-Status}\n' "$@" 2>/dev/null |
        grep -v -e ' not-installed$' -e "^$DPKG_MAINTSCRIPT_PACKAGE:$DPKG_MAINTSCRIPT_ARCH " || true
}

# The file has to outlast all packages that look for it.
forget_wish() {
    if [ -z "$(others hxraidsvc libvexorapi1 libhxraid-linuxmd)" ]; then
        rm -f /etc/hxraid/purge-state
        [ ! -d /etc/hxraid ] || rmdir --ignore-fail-on-non-empty /etc/hxraid
    fi
}
