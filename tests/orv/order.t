Passes are listed in their order of execution, with the users of their outputs:

  $ orv order scene.json

The same for programs, whose positions count from 0:

  $ orv order --json scene.json

A document without passes has an empty order:

  $ echo '{ "format": "orv-graph", "version": 1 }' | orv order
  $ echo '{ "format": "orv-graph", "version": 1 }' | orv order --json

Names that hold separators are escaped:

  $ orv order odd.json
