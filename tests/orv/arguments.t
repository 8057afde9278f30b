Without a command, or with an unknown command:

  $ orv
  ! orv: missing command (see orv help)
  ? 2
  $ orv paint
  ! orv: unknown command "paint" (see orv help)
  ? 2
  $ orv help paint
  ! orv: unknown command "paint" (see orv help)
  ? 2
  $ orv --json
  ! orv: unknown command "--json" (see orv help)
  ? 2

The version:

  $ orv --version
  orv 1.0.0

All ways to ask for the help of the program print the same text:

  $ orv help >1; orv --help | cmp - 1; orv -h | cmp - 1; head -1 1
  Usage: orv COMMAND [OPTION...] [FILE]

So do all ways to ask for the help of a command:

  $ orv help lint >1; orv lint --help | cmp - 1; orv lint -h | cmp - 1; orv explain --help | head -1
  Usage: orv explain [OPTION...] FILE [NODE | NODE.PORT | FROM TO]

Options that are unknown or incomplete:

  $ orv lint --colour scene.json
  ! orv lint: unknown option --colour (see orv help lint)
  ? 2
  $ orv lint -x scene.json
  ! orv lint: unknown option -x (see orv help lint)
  ? 2
  $ orv lint --json=yes scene.json
  ! orv lint: option --json takes no value (see orv help lint)
  ? 2
  $ orv picture -o
  ! orv picture: option -o needs a value: FILE (see orv help picture)
  ? 2
  $ orv run --frames
  ! orv run: option --frames needs a value: N (see orv help run)
  ? 2
  $ orv lint --frames 3 scene.json
  ! orv lint: unknown option --frames (see orv help lint)
  ? 2

Too many or too few positional arguments:

  $ orv lint scene.json new.json
  ! orv lint: unexpected argument "new.json" (see orv help lint)
  ? 2
  $ orv diff scene.json
  ! orv diff: missing argument: needs OLD NEW (see orv help diff)
  ? 2
  $ orv explain
  ! orv explain: missing argument: needs FILE [NODE | NODE.PORT | FROM TO] (see orv help explain)
  ? 2
  $ orv explain scene.json A B C
  ! orv explain: unexpected argument "C" (see orv help explain)
  ? 2

Words after -- are positional arguments:

  $ orv lint -- --json
  ! --json: unreadable: No such file or directory
  ? 2

A repeated option has its last value:

  $ orv run --frames 7 --frames 0 clean.json | grep -c frame
  0
  ? 1
