Without a command, or with one that is not known:

  $ orv
  $ orv paint
  $ orv help paint
  $ orv --json

The version:

  $ orv --version

The help of the program is the same however it is asked for:

  $ orv help >1; orv --help | cmp - 1; orv -h | cmp - 1; head -1 1

So is that of a command:

  $ orv help lint >1; orv lint --help | cmp - 1; orv lint -h | cmp - 1; orv explain --help | head -1

Options that a command does not have, or that are not complete:

  $ orv lint --colour scene.json
  $ orv lint -x scene.json
  $ orv lint --json=yes scene.json
  $ orv picture -o
  $ orv run --frames
  $ orv lint --frames 3 scene.json

Too many words, or too few:

  $ orv lint scene.json new.json
  $ orv diff scene.json
  $ orv explain
  $ orv explain scene.json A B C

What follows -- is no option:

  $ orv lint -- --json

An option that stands twice has its last value:

  $ orv run --frames 7 --frames 0 clean.json | grep -c frame
