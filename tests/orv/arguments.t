Without a command, or with one that is not known:

  $ orv
  ! orv: needs a command (see orv help)
  ? 2
  $ orv paint
  ! orv: has no command paint (see orv help)
  ? 2
  $ orv help paint
  ! orv: has no command paint (see orv help)
  ? 2
  $ orv --json
  ! orv: has no command --json (see orv help)
  ? 2

The version:

  $ orv --version
  orv 1.0.0

The help of the program is the same however it is asked for:

  $ orv help >1; orv --help | cmp - 1; orv -h | cmp - 1; head -1 1
  Usage: orv COMMAND [OPTION...] [FILE]

So is that of a command:

  $ orv help lint >1; orv lint --help | cmp - 1; orv lint -h | cmp - 1; orv explain --help | head -1
  Usage: orv explain [OPTION...] FILE [NODE | NODE.PORT | FROM TO]

Options that a command does not have, or that are not complete:

  $ orv lint --colour scene.json
  ! orv: lint has no option --colour (see orv help lint)
  ? 2
  $ orv lint -x scene.json
  ! orv: lint has no option -x (see orv help lint)
  ? 2
  $ orv lint --json=yes scene.json
  ! orv: lint --json takes no value (see orv help lint)
  ? 2
  $ orv picture -o
  ! orv: picture -o needs a value: FILE (see orv help picture)
  ? 2
  $ orv run --frames
  ! orv: run --frames needs a value: N (see orv help run)
  ? 2
  $ orv lint --frames 3 scene.json
  ! orv: lint has no option --frames (see orv help lint)
  ? 2

Too many words, or too few:

  $ orv lint scene.json new.json
  ! orv: lint does not take new.json (see orv help lint)
  ? 2
  $ orv diff scene.json
  ! orv: diff needs OLD NEW (see orv help diff)
  ? 2
  $ orv explain
  ! orv: explain needs FILE [NODE | NODE.PORT | FROM TO] (see orv help explain)
  ? 2
  $ orv explain scene.json A B C
  ! orv: explain does not take C (see orv help explain)
  ? 2

What follows -- is no option:

  $ orv lint -- --json
  ! --json: unreadable: No such file or directory
  ? 2

An option that stands twice has its last value:

  $ orv run --frames 7 --frames 0 clean.json | grep -c frame
  0
  ? 1
