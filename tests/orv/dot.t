The Graphviz text:

  $ orv dot clean.json | sed -n '1p;$p'
  digraph orv {
  }
  $ orv dot --json clean.json | head -c 35
  {
      "dot": "digraph orv {\n  grap(no line break)

Graphviz reads the passes and their connections from the text:

  $ orv dot clean.json | dot -Tplain | awk '$1 == "node" { print $2 } $1 == "edge" { print $2, $3 }'
  n0o
  n1
  n2
  n1 n2
  n2 n0o
