A reader that has gone is told in one line:

  $ ./make-chain 5000 >large.json; orv order large.json | true; echo ${PIPESTATUS[0]}
  $ orv run --frames 1000000 clean.json | head -1; echo ${PIPESTATUS[0]}

So is a device that is full, or no output at all:

  $ orv order clean.json >/dev/full
  $ orv --version >&-

A file is replaced as a whole, or not at all:

  $ echo old >kept.svg; orv picture -o kept.svg broken.json; cat kept.svg
  $ mkdir locked.svg; orv picture -o locked.svg scene.json
