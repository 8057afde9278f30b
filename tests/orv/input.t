Standard input is read for - and without a name:

  $ orv order <clean.json | head -1
  $ orv order - <clean.json | head -1

Files that cannot be read:

  $ orv lint missing.json
  $ orv lint --json missing.json
  $ mkdir directory; orv order directory
  $ orv order <&-

What is wrong with a document is told with its place:

  $ orv order broken.json
  $ orv order --json broken.json
  $ printf '{' | orv lint
  $ printf '' | orv lint

All of it is told at once:

  $ orv order wrong.json
  $ orv order --json wrong.json

Names that are not known, with those that may have been meant:

  $ orv explain scene.json Lihgt
  $ orv explain scene.json blur
  $ orv explain scene.json Bloom/Blurr
  $ orv explain scene.json Blom/Blur
  $ orv explain scene.json Light.colour
  $ orv explain scene.json Ligt.color
  $ orv explain scene.json Angel
  $ orv explain scene.json Nonsense
  $ orv explain scene.json Light.color Tone.imag
  $ orv explain --json scene.json Lihgt

Names that may mean several things:

  $ orv explain scene.json Bloom/Blur
  $ orv explain scene.json Bloom/Blur.source
  $ orv explain --json scene.json Bloom/Blur
