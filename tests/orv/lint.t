Findings are reported with their places:

  $ orv lint scene.json
  scene.json:6:9: unread-parameter: No pass reads the parameter Quality.
  scene.json:20:9: duplicate-name: Bloom/Blur[1] has the name of an older sibling, Bloom/Blur[0]; look-ups by name find only that one.
  scene.json:25:9: unneeded-pass: Overlay never runs: neither an output of the renderer nor the target needs it.
  ? 1

The same as JSON:

  $ orv lint --json scene.json
  {
      "findings": [
          {
              "code": "unread-parameter",
              "column": 9,
              "file": "scene.json",
              "line": 6,
              "path": "Quality",
              "text": "No pass reads the parameter Quality."
          },
          {
              "code": "duplicate-name",
              "column": 9,
              "file": "scene.json",
              "line": 20,
              "path": "Bloom/Blur[1]",
              "text": "Bloom/Blur[1] has the name of an older sibling, Bloom/Blur[0]; look-ups by name find only that one."
          },
          {
              "code": "unneeded-pass",
              "column": 9,
              "file": "scene.json",
              "line": 25,
              "path": "Overlay",
              "text": "Overlay never runs: neither an output of the renderer nor the target needs it."
          }
      ]
  }
  ? 1

No findings:

  $ orv lint clean.json
  $ orv lint --json clean.json
  {
      "findings": [
      ]
  }

All codes of findings and their meanings:

  $ orv lint --codes | grep '^unread-output'
  unread-output: nothing reads an output
  $ orv lint --codes | cut -d: -f1 | sort -c
  $ orv lint --codes --json | grep -c '"code"' | xargs test 5 -lt
