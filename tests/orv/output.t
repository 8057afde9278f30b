A closed pipe is reported in one line:

  $ ./make-chain 5000 >large.json; orv order large.json | true; echo ${PIPESTATUS[0]}
  2
  ! orv: cannot write to standard output: Broken pipe
  $ timeout 60 orv run --frames 1000000 --slow Tone=1 clean.json | head -1; echo ${PIPESTATUS[0]}
  setup
  2
  ! orv: cannot write to standard output: Broken pipe

So is a full device, and a closed standard output:

  $ orv order clean.json >/dev/full
  ! orv: cannot write to standard output: No space left on device
  ? 2
  $ orv --version >&-
  ! orv: cannot write to standard output: Bad file descriptor
  ? 2

A file is replaced as a whole or not at all:

  $ echo old >kept.svg; orv picture -o kept.svg broken.json; cat kept.svg
  old
  ! broken.json:5:1: syntax: a comma or a closing bracket is expected here
  $ mkdir locked.svg; orv picture -o locked.svg scene.json
  ! orv: cannot write "locked.svg": Filename refers to a directory
  ? 2

A pipe is written and not replaced:

  $ mkfifo pipe.svg
  > timeout 60 cat pipe.svg >copy &
  > timeout 60 orv picture -o pipe.svg scene.json; wait; head -c 5 copy; test -p pipe.svg
  <?xml(no line break)
