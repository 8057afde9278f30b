A report on standard output, or in a file:

  $ orv report scene.json | head -1
  <!DOCTYPE html>
  $ orv report -o report.html scene.json && head -1 report.html
  <!DOCTYPE html>
  $ orv report -o report.html --json scene.json
  {
      "file": "report.html"
  }
  $ orv report --json scene.json | head -c 32
  {
      "html": "<!DOCTYPE html>\n(no line break)

Two reports without frames have the same bytes:

  $ orv report --frames 0 scene.json >1.html; orv report --frames 0 scene.json | cmp - 1.html

Failed passes are marked:

  $ PATH=$BIN orv report --frames 1 scene.json >well.html; grep -c 'state failed' well.html
  0
  ? 1
  $ PATH=$BIN orv report --frames 1 --fail Tone=7 scene.json >failed.html; grep -c 'state failed' failed.html
  1

Without Graphviz, the report shows the Graphviz text:

  $ PATH=$BIN orv report -o plain.html scene.json; grep -c digraph plain.html
  1
  $ orv report -o drawn.html scene.json; grep -c digraph drawn.html
  0
  ? 1

A failure of Graphviz is reported, and the report is written:

  $ mkdir fake; echo '#!/bin/sh
  > exit 3' >fake/dot; chmod +x fake/dot; PATH=$BIN:fake:/bin orv report -o failed.html scene.json; grep -c digraph failed.html
  1
  ! orv: dot failed with exit code 3

A file that cannot be written:

  $ orv report -o missing/report.html scene.json
  ! orv: cannot write "missing/report.html": No such file or directory
  ? 2
