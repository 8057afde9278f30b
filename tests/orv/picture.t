Graphviz draws an SVG:

  $ orv picture scene.json | head -1
  <?xml version="1.0" encoding="UTF-8" standalone="no"?>
  $ orv picture --json scene.json | grep -c '"picture": "<?xml'
  1

A file has the format that its name ends in:

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

Other formats are not known:

  $ orv picture -o scene.gif scene.json
  ! orv: picture writes files that end in .svg, .png or .pdf, not scene.gif (see orv help picture)
  ? 2
  $ orv picture -o scene scene.json
  ! orv: picture writes files that end in .svg, .png or .pdf, not scene (see orv help picture)
  ? 2

Without Graphviz:

  $ PATH=$BIN orv picture scene.json
  ! orv: pictures are drawn by the program dot of Graphviz, which is not installed (orv dot writes its input)
  ? 2

Graphviz fails, crashes, takes too long:

  $ mkdir fake; echo '#!/bin/sh
  > echo "no such format" >&2; echo more >&2; exit 3' >fake/dot; chmod +x fake/dot; PATH=$BIN:fake:/bin orv picture scene.json
  ! orv: dot has failed with exit code 3: no such format
  ? 2
  $ echo '#!/bin/sh
  > kill -9 $$' >fake/dot; PATH=$BIN:fake:/bin orv picture scene.json
  ! orv: dot has crashed
  ? 2
  $ echo '#!/bin/sh
  > exec sleep 60' >fake/dot; PATH=$BIN:fake:/bin orv picture --timeout 1 scene.json
  ! orv: dot has not finished within 1 s
  ? 2
  $ echo '#!/no/such/interpreter' >fake/dot; PATH=$BIN:fake:/bin orv picture scene.json
  ! orv: dot: execvp: No such file or directory
  ? 2

A file that cannot be written, or a document that cannot be read, leaves no file behind:

  $ orv picture -o missing/scene.svg scene.json
  ! orv: cannot write missing/scene.svg: No such file or directory
  ? 2
  $ orv picture -o broken.svg broken.json; ls broken.svg
  ! broken.json:5:1: syntax: a comma or a closing bracket is expected here
  ! ls: cannot access 'broken.svg': No such file or directory
  ? 2
