What has changed:

  $ orv diff scene.json new.json
  $ orv diff --json scene.json new.json

Nothing has:

  $ orv diff scene.json scene.json
  $ orv diff --json scene.json scene.json

One of both may come on standard input, but not both:

  $ orv diff - scene.json <scene.json
  $ orv diff scene.json - <scene.json
  $ orv diff - -

What is wrong with either document is trouble:

  $ orv diff scene.json missing.json
  $ orv diff broken.json scene.json
