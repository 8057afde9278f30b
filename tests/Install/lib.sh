# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT
#
# What the scripts beside it share; sourced, not run.

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
quickstart=$here/../../examples/quickstart/main.cpp

# A directory far from this tree, gone when the script ends.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# expect_output FILE COMMAND...: the command succeeds and prints what FILE holds.
expect_output() {
    local expected=$1
    shift
    "$@" >"$work/output"
    diff -u --label "expected output" --label "$*" "$expected" "$work/output"
}
