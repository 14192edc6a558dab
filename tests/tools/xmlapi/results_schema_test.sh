#!/bin/sh
# Holds every golden result against the published schema. usage: results_schema_test.sh SCHEMA DIR...
set -eu
schema=$1
shift
files=$(find "$@" -name '*.xml')
[ -n "$files" ] || { echo "no golden results below $*" >&2; exit 1; }

# The check can fail: an element that does not belong makes a result invalid.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for file in $files; do
    sed '1a <Stray type="U8">0</Stray>' "$file" >"$scratch/stray.xml"
    if xmllint --noout --relaxng "$schema" "$scratch/stray.xml" 2>/dev/null; then
        echo "the schema takes a stray element in $file" >&2
        exit 1
    fi
    break
done

# shellcheck disable=SC2086  # the names hold no blanks
xmllint --noout --relaxng "$schema" $files
