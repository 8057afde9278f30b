Two graphs with differences:

  $ orv diff scene.json new.json
  parameter-changed Angle: double 30 -> double 45
  enabled-changed Grain: disabled -> enabled
  node-removed Overlay: pass of type OverlayPass -> nothing
  ? 1
  $ orv diff --json scene.json new.json
  {
      "changes": [
          {
              "after": "double 45",
              "before": "double 30",
              "code": "parameter-changed",
              "path": "Angle"
          },
          {
              "after": "enabled",
              "before": "disabled",
              "code": "enabled-changed",
              "path": "Grain"
          },
          {
              "after": "",
              "before": "pass of type OverlayPass",
              "code": "node-removed",
              "path": "Overlay"
          }
      ]
  }
  ? 1

Two graphs without differences:

  $ orv diff scene.json scene.json
  $ orv diff --json scene.json scene.json
  {
      "changes": [
      ]
  }

One of the documents may come from standard input, but not both:

  $ orv diff - scene.json <scene.json
  $ orv diff scene.json - <scene.json
  $ orv diff - -
  ! orv diff: cannot read standard input twice (see orv help diff)
  ? 2

Either document may have errors:

  $ orv diff scene.json missing.json
  ! missing.json: unreadable: No such file or directory
  ? 2
  $ orv diff broken.json scene.json
  ! broken.json:5:1: syntax: a comma or a closing bracket is expected here
  ? 2
