The text that Graphviz reads:

  $ orv dot clean.json

The same in JSON:

  $ orv dot --json clean.json | head -c 35

Graphviz takes it:

  $ orv dot scene.json | dot -Tplain | head -1 | cut -d' ' -f1
