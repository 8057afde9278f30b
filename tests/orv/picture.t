Graphviz draws an SVG:

  $ orv picture scene.json | head -1
  <?xml version="1.0" encoding="UTF-8" standalone="no"?>
  $ orv picture --json scene.json | grep -c '"picture": "<?xml'
  1

The suffix of a file selects the format:

  $ orv picture -o scene.png scene.json && head -c 4 scene.png | tail -c 3
  PNG(no line break)
  $ orv picture --output=scene.PDF scene.json && head -c 4 scene.PDF
  %PDF(no line break)
  $ orv picture -oscene.svg scene.json --json && head -c 5 scene.svg
  {
      "file": "scene.svg",
      "format": "svg"
  }
  <?xml(no line break)

Other suffixes are refused:

  $ orv picture -o scene.gif scene.json
  ! orv picture: cannot write "scene.gif": the suffix must be .svg, .png or .pdf (see orv help picture)
  ? 2
  $ orv picture -o scene scene.json
  ! orv picture: cannot write "scene": the suffix must be .svg, .png or .pdf (see orv help picture)
  ? 2

Without Graphviz:

  $ PATH=$BIN orv picture scene.json
  ! orv: cannot draw: the program dot of Graphviz is not installed (orv dot writes its input)
  ? 2

Graphviz fails, crashes, takes too long, or does not start:

  $ mkdir fake; echo '#!/bin/sh
  > echo "no such format" >&2; echo more >&2; exit 3' >fake/dot; chmod +x fake/dot; PATH=$BIN:fake:/bin orv picture scene.json
  ! orv: dot failed with exit code 3: no such format
  ? 2
  $ echo '#!/bin/sh
  > kill -9 $$' >fake/dot; PATH=$BIN:fake:/bin orv picture scene.json
  ! orv: dot crashed
  ? 2
  $ echo '#!/bin/sh
  > exec sleep 60' >fake/dot; PATH=$BIN:fake:/bin orv picture --timeout 1 scene.json
  ! orv: dot did not finish within 1 s
  ? 2
  $ echo '#!/no/such/interpreter' >fake/dot; PATH=$BIN:fake:/bin orv picture scene.json
  ! orv: dot: execvp: No such file or directory
  ? 2

If the file cannot be written or the document cannot be read, there is no new file:

  $ orv picture -o missing/scene.svg scene.json
  ! orv: cannot write "missing/scene.svg": No such file or directory
  ? 2
  $ orv picture -o broken.svg broken.json; ls broken.svg
  ! broken.json:5:1: syntax: a comma or a closing bracket is expected here
  ! ls: cannot access 'broken.svg': No such file or directory
  ? 2
