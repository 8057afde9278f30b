Findings are told with their places:

  $ orv lint scene.json

The same for programs:

  $ orv lint --json scene.json

Nothing found:

  $ orv lint clean.json
  $ orv lint --json clean.json

Every code that findings may have is explained:

  $ orv lint --codes | grep '^unread-output'
  $ orv lint --codes | cut -d: -f1 | sort -c
  $ orv lint --codes --json | grep -c '"code"' | xargs test 5 -lt
