Graphviz draws an SVG:

  $ orv picture scene.json | head -1
  $ orv picture --json scene.json | grep -c '"picture": "<?xml'

A file has the format that its name ends in:

  $ orv picture -o scene.png scene.json && head -c 4 scene.png | tail -c 3
  $ orv picture --output=scene.PDF scene.json && head -c 4 scene.PDF
  $ orv picture -oscene.svg scene.json --json && head -c 5 scene.svg

Other formats are not known:

  $ orv picture -o scene.gif scene.json
  $ orv picture -o scene scene.json

Without Graphviz:

  $ PATH=$BIN orv picture scene.json

Graphviz fails, crashes, takes too long:

  $ mkdir fake; echo '#!/bin/sh
  > echo "no such format" >&2; echo more >&2; exit 3' >fake/dot; chmod +x fake/dot; PATH=$BIN:fake:/bin orv picture scene.json
  $ echo '#!/bin/sh
  > kill -9 $$' >fake/dot; PATH=$BIN:fake:/bin orv picture scene.json
  $ echo '#!/bin/sh
  > exec sleep 60' >fake/dot; PATH=$BIN:fake:/bin orv picture --timeout 1 scene.json
  $ echo '#!/no/such/interpreter' >fake/dot; PATH=$BIN:fake:/bin orv picture scene.json

A file that cannot be written, or a document that cannot be read, leaves no file behind:

  $ orv picture -o missing/scene.svg scene.json
  $ orv picture -o broken.svg broken.json; ls broken.svg
