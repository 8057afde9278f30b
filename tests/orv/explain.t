All passes:

  $ orv explain scene.json
  2	Shadow	runs
  1	GBuffer	runs
  3	Light	runs
  4	Bloom/Blur[0]	runs
  5	Bloom/Blur[1]	runs
  -	Grain	disabled
  6	Tone	runs
  -	Overlay	not needed
  $ orv explain --json new.json
  {
      "passes": [
          {
              "enabled": true,
              "needed": true,
              "pass": "Shadow",
              "position": 1,
              "runs": true
          },
          {
              "enabled": true,
              "needed": true,
              "pass": "GBuffer",
              "position": 0,
              "runs": true
          },
          {
              "enabled": true,
              "needed": true,
              "pass": "Light",
              "position": 2,
              "runs": true
          },
          {
              "enabled": true,
              "needed": true,
              "pass": "Bloom/Blur[0]",
              "position": 3,
              "runs": true
          },
          {
              "enabled": true,
              "needed": true,
              "pass": "Bloom/Blur[1]",
              "position": 4,
              "runs": true
          },
          {
              "enabled": true,
              "needed": true,
              "pass": "Grain",
              "position": 5,
              "runs": true
          },
          {
              "enabled": true,
              "needed": true,
              "pass": "Tone",
              "position": 6,
              "runs": true
          }
      ]
  }

A pass that runs:

  $ orv explain scene.json GBuffer
  GBuffer runs as 1 of 6, needed by the renderer's output Picture:
    output Picture
    output Tone.image
    input Tone.image
    output Light.image
    input Light.color
    output GBuffer.color
  $ orv explain --json scene.json GBuffer
  {
      "answers": [
          {
              "enabled": true,
              "node": "GBuffer",
              "of": 6,
              "output": "Picture",
              "path": [
                  {
                      "output": "Picture"
                  },
                  {
                      "output": "Tone.image"
                  },
                  {
                      "input": "Tone.image"
                  },
                  {
                      "output": "Light.image"
                  },
                  {
                      "input": "Light.color"
                  },
                  {
                      "output": "GBuffer.color"
                  }
              ],
              "position": 0,
              "state": "scheduled"
          }
      ]
  }

A disabled pass, and a pass that nothing needs:

  $ orv explain scene.json Grain
  Grain does not run: it is disabled. The renderer's output Picture leads to it:
    output Picture
    output Tone.image
    input Tone.grain
    output Grain.noise
  ? 1
  $ orv explain scene.json Overlay
  Overlay does not run: no output of the renderer and no target leads to it. Make it the target or feed an output of the renderer from it, and it runs.
  ? 1
  $ orv explain --json scene.json Overlay
  {
      "answers": [
          {
              "enabled": true,
              "nearest": "Overlay",
              "nearestPath": [
              ],
              "node": "Overlay",
              "state": "not-needed"
          }
      ]
  }
  ? 1

A document from standard input:

  $ orv explain - Tone <clean.json
  Tone runs as 2 of 2, needed by the renderer's output Picture:
    output Picture
    output Tone.image

A group, and the renderer itself, whose path is empty:

  $ orv explain scene.json Bloom
  Bloom is a group: there is nothing to run.
  $ orv explain scene.json ''
  The renderer is not a pass: there is nothing to run.

The value of an input:

  $ orv explain scene.json Light.shadow
  Light.shadow takes the output Shadow.map:
    input Light.shadow
    output Shadow.map
  $ orv explain scene.json 'Bloom/Blur[0].source'
  Bloom/Blur[0].source takes the output Light.image:
    input Bloom/Blur[0].source
    input Bloom.image
    output Light.image
  $ orv explain scene.json Shadow.angle
  Shadow.angle takes the parameter Angle (30 now):
    input Shadow.angle
    parameter Angle
  $ orv explain scene.json Tone.grain
  Tone.grain takes its default (0), because Grain, which feeds it, is disabled:
    input Tone.grain
    output Grain.noise
  $ orv explain --json scene.json Tone.grain
  {
      "answers": [
          {
              "cause": "upstream-disabled",
              "end": {
                  "output": "Grain.noise"
              },
              "input": "Tone.grain",
              "path": [
                  {
                      "input": "Tone.grain"
                  },
                  {
                      "output": "Grain.noise"
                  }
              ],
              "source": "default",
              "value": 0
          }
      ]
  }

A parameter, and an output of the renderer:

  $ orv explain scene.json Angle
  Angle is a parameter of the renderer (30 now).
  $ orv explain scene.json Picture
  Picture is an output of the renderer. Its value comes from Tone.image, which has 1 user.
  Tone runs as 6 of 6, needed by the renderer's output Picture:
    output Picture
    output Tone.image
  $ orv explain --json scene.json Picture
  {
      "answers": [
          {
              "output": "Picture",
              "pass": {
                  "enabled": true,
                  "node": "Tone",
                  "of": 6,
                  "output": "Picture",
                  "path": [
                      {
                          "output": "Picture"
                      },
                      {
                          "output": "Tone.image"
                      }
                  ],
                  "position": 5,
                  "state": "scheduled"
              },
              "producer": "Tone.image",
              "users": 1
          }
      ]
  }

An output of a pass that runs, and of a pass that does not run:

  $ orv explain scene.json GBuffer.depth | head -2
  GBuffer.depth is an output of a pass and has 1 user.
  GBuffer runs as 1 of 6, needed by the renderer's output Picture:
  $ orv explain scene.json Overlay.image
  Overlay.image is an output of a pass.
  Overlay does not run: no output of the renderer and no target leads to it. Make it the target or feed an output of the renderer from it, and it runs.
  ? 1

Both an input and an output with the same path are explained:

  $ orv explain scene.json Bloom.image
  Bloom.image carries the output Light.image:
    input Bloom.image
    output Light.image
  Bloom.image is an output of a group. Its value comes from Bloom/Blur[1].blurred, which has 1 user.
  Bloom/Blur[1] runs as 5 of 6, needed by the renderer's output Picture:
    output Picture
    output Tone.image
    input Tone.bloom
    output Bloom.image
    output Bloom/Blur[1].blurred

An output that no pass produces:

  $ orv explain odd.json Nothing
  Nothing is an output of the renderer. No pass produces it.
  ? 1
  $ orv explain --json odd.json Nothing
  {
      "answers": [
          {
              "output": "Nothing"
          }
      ]
  }
  ? 1

Accepted and refused edges:

  $ orv explain unwired.json GBuffer.color Overlay.depth
  An edge from the output GBuffer.color to the input Overlay.depth is accepted.
  $ orv explain --json unwired.json GBuffer.color Overlay.depth
  {
      "answers": [
          {
              "from": {
                  "output": "GBuffer.color"
              },
              "made": true,
              "rule": "accepted",
              "to": {
                  "input": "Overlay.depth"
              }
          }
      ]
  }
  $ orv explain unwired.json Angle GBuffer.detail
  An edge from the parameter Angle to the input GBuffer.detail is accepted.
  $ orv explain scene.json GBuffer.color Overlay.depth
  An edge from the output GBuffer.color to the input Overlay.depth is refused: Overlay.depth is already fed by the output GBuffer.depth.
  ? 1
  $ orv explain scene.json Tone.image Shadow.angle
  An edge from the output Tone.image to the input Shadow.angle is refused: Shadow.angle is already fed by the parameter Angle.
  ? 1
  $ orv explain unwired.json Tone.image GBuffer.detail
  An edge from the output Tone.image to the input GBuffer.detail is refused: the oldest edge of Tone.image leads to the output Picture, not to a sibling.
  ? 1
  $ orv explain unwired.json Fog.color GBuffer.detail
  An edge from the output Fog.color to the input GBuffer.detail is refused: it would close a cycle:
    output Fog.color
    input Fog.color
    output GBuffer.color
    input GBuffer.detail
  ? 1
  $ orv explain --json unwired.json Fog.color GBuffer.detail
  {
      "answers": [
          {
              "cycle": [
                  {
                      "output": "Fog.color"
                  },
                  {
                      "input": "Fog.color"
                  },
                  {
                      "output": "GBuffer.color"
                  },
                  {
                      "input": "GBuffer.detail"
                  }
              ],
              "from": {
                  "output": "Fog.color"
              },
              "made": false,
              "rule": "cycle",
              "to": {
                  "input": "GBuffer.detail"
              }
          }
      ]
  }
  ? 1
  $ orv explain unwired.json GBuffer.color Bloom/Blur.source
  An edge from the output GBuffer.color to the input Bloom/Blur.source is accepted but does not carry that output: the nodes are not siblings.
  ? 1

If an input and an output share a path, the port that fits the other end is chosen:

  $ orv explain unwired.json Bloom.image 'Bloom/Blur.source'
  An edge from the input Bloom.image to the input Bloom/Blur.source is accepted.
  $ orv explain unwired.json 'Bloom/Blur.blurred' Bloom.image
  An edge from the output Bloom/Blur.blurred to the output Bloom.image is accepted.
