Standard input is read for -, and if FILE is left out:

  $ orv order <clean.json | head -1
  1	Geometry	color=1
  $ orv order - <clean.json | head -1
  1	Geometry	color=1

Files that cannot be read:

  $ orv lint missing.json
  ! missing.json: unreadable: No such file or directory
  ? 2
  $ orv lint --json missing.json
  {
      "problems": [
          {
              "code": "unreadable",
              "file": "missing.json",
              "text": "No such file or directory"
          }
      ]
  }
  ? 2
  $ mkdir directory; orv order directory
  ! directory: unreadable: file to open is a directory
  ? 2
  $ orv order <&-
  ! <stdin>: unreadable: Bad file descriptor
  ? 2

An error in a document is reported with its place:

  $ orv order broken.json
  ! broken.json:5:1: syntax: a comma or a closing bracket is expected here
  ? 2
  $ orv order --json broken.json
  {
      "problems": [
          {
              "code": "syntax",
              "column": 1,
              "file": "broken.json",
              "line": 5,
              "text": "a comma or a closing bracket is expected here"
          }
      ]
  }
  ? 2
  $ printf '{' | orv lint
  ! <stdin>:1:2: syntax: the text ends too early
  ? 2
  $ printf '' | orv lint
  ! <stdin>:1:1: syntax: the text ends too early
  ? 2

All errors are reported at once:

  $ orv order wrong.json
  ! wrong.json:7:19: unknown-parent: "Missing/Tone": no entry before this one is the group "Missing"
  ! wrong.json:10:9: unknown-port: "Geometry.colour -> Picture": "Geometry" has no output "colour"
  ! wrong.json:12:9: already-fed: "Geometry.color -> Picture": Picture is already fed by Geometry.color
  ! wrong.json:14:15: unknown-node: target: there is no node "Nobody"
  ? 2
  $ orv order --json wrong.json
  {
      "problems": [
          {
              "code": "unknown-parent",
              "column": 19,
              "file": "wrong.json",
              "line": 7,
              "text": "\"Missing/Tone\": no entry before this one is the group \"Missing\""
          },
          {
              "code": "unknown-port",
              "column": 9,
              "file": "wrong.json",
              "line": 10,
              "text": "\"Geometry.colour -> Picture\": \"Geometry\" has no output \"colour\""
          },
          {
              "code": "already-fed",
              "column": 9,
              "file": "wrong.json",
              "line": 12,
              "text": "\"Geometry.color -> Picture\": Picture is already fed by Geometry.color"
          },
          {
              "code": "unknown-node",
              "column": 15,
              "file": "wrong.json",
              "line": 14,
              "text": "target: there is no node \"Nobody\""
          }
      ]
  }
  ? 2

Unknown names, with suggestions:

  $ orv explain scene.json Lihgt
  ! scene.json: unknown-name: there is no node or port "Lihgt"; did you mean Light?
  ? 2
  $ orv explain scene.json blur
  ! scene.json: unknown-name: there is no node or port "blur"; did you mean Bloom/Blur[0] or Bloom/Blur[1]?
  ? 2
  $ orv explain scene.json Bloom/Blurr
  ! scene.json: unknown-name: there is no node or port "Bloom/Blurr"; did you mean Bloom/Blur[0] or Bloom/Blur[1]?
  ? 2
  $ orv explain scene.json Blom/Blur
  ! scene.json: unknown-name: there is no node or port "Blom/Blur"; did you mean Bloom/Blur[0] or Bloom/Blur[1]?
  ? 2
  $ orv explain scene.json Light.colour
  ! scene.json: unknown-name: Light has no port "colour"; did you mean Light.color?
  ? 2
  $ orv explain scene.json Ligt.color
  ! scene.json: unknown-name: there is no node "Ligt"; did you mean Light?
  ? 2
  $ orv explain scene.json Angel
  ! scene.json: unknown-name: there is no node or port "Angel"; did you mean Angle?
  ? 2
  $ orv explain scene.json Nonsense
  ! scene.json: unknown-name: there is no node or port "Nonsense"
  ? 2
  $ orv explain scene.json Light.color Tone.imag
  ! scene.json: unknown-name: Tone has no port "imag"; did you mean Tone.image?
  ? 2
  $ orv explain --json scene.json Lihgt
  {
      "problems": [
          {
              "candidates": [
                  "Light"
              ],
              "code": "unknown-name",
              "file": "scene.json",
              "text": "there is no node or port \"Lihgt\"; did you mean Light?"
          }
      ]
  }
  ? 2

Suggestions from the same group come first:

  $ orv explain groups.json B/Blurr
  ! groups.json: unknown-name: there is no node or port "B/Blurr"; did you mean B/Blur or A/Blur?
  ? 2

Ambiguous names:

  $ orv explain scene.json Bloom/Blur
  ! scene.json: ambiguous-name: "Bloom/Blur" is ambiguous: it matches Bloom/Blur[0] and Bloom/Blur[1]
  ? 2
  $ orv explain scene.json Bloom/Blur.source
  ! scene.json: ambiguous-name: "Bloom/Blur.source" is ambiguous: it matches Bloom/Blur[0].source and Bloom/Blur[1].source
  ? 2
  $ orv explain --json scene.json Bloom/Blur
  {
      "problems": [
          {
              "candidates": [
                  "Bloom/Blur[0]",
                  "Bloom/Blur[1]"
              ],
              "code": "ambiguous-name",
              "file": "scene.json",
              "text": "\"Bloom/Blur\" is ambiguous: it matches Bloom/Blur[0] and Bloom/Blur[1]"
          }
      ]
  }
  ? 2
