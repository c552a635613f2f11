#!/usr/bin/env bash
# Compares the dynamic symbols of the shared library with the export list.
# Fails on any exported symbol that is not in the list; prints the coverage.
set -euo pipefail
lib=$1 list=$2
if [ ! -f "$list" ]; then
  echo "export list $list not found: skipped"
  exit 77
fi
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
tail -n +2 "$list" | cut -f1 | sed '/^$/d' | sort -u > "$tmp/listed"
nm -D --defined-only "$lib" | awk '$2 ~ /^[TtDdBbRrVvWwiu]$/ {print $3}' | sed 's/@.*//' | sort -u > "$tmp/exported"
comm -13 "$tmp/listed" "$tmp/exported" > "$tmp/extra"
have=$(comm -12 "$tmp/listed" "$tmp/exported" | wc -l)
total=$(wc -l < "$tmp/listed")
echo "$have of $total exports"
if [ -s "$tmp/extra" ]; then
  echo "exported but not in the list:"
  cat "$tmp/extra"
  exit 1
fi
