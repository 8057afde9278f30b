Every pass:

  $ orv explain scene.json
  $ orv explain --json new.json

A pass that runs:

  $ orv explain scene.json GBuffer
  $ orv explain --json scene.json GBuffer

A pass that is disabled, and one that nothing needs:

  $ orv explain scene.json Grain
  $ orv explain scene.json Overlay
  $ orv explain --json scene.json Overlay

A group:

  $ orv explain scene.json Bloom

The value of an input:

  $ orv explain scene.json Light.shadow
  $ orv explain scene.json 'Bloom/Blur[0].source'
  $ orv explain scene.json Shadow.angle
  $ orv explain scene.json Tone.grain
  $ orv explain --json scene.json Tone.grain

A parameter, and an output of the renderer:

  $ orv explain scene.json Angle
  $ orv explain scene.json Picture
  $ orv explain --json scene.json Picture

Outputs of passes, one of which does not run:

  $ orv explain scene.json GBuffer.depth
  $ orv explain scene.json Overlay.image

An input and an output of the same path are both explained:

  $ orv explain scene.json Bloom.image

A path that leads to no pass:

  $ orv explain odd.json Nothing
  $ orv explain --json odd.json Nothing

An edge that is taken, and edges that are refused:

  $ orv explain scene.json GBuffer.color Overlay.depth
  $ orv explain unwired.json GBuffer.color Overlay.depth
  $ orv explain --json unwired.json GBuffer.color Overlay.depth
  $ orv explain scene.json Tone.image Light.color
  $ orv explain scene.json Tone.image Shadow.angle
  $ orv explain unwired.json Angle GBuffer.detail
  $ orv explain unwired.json Tone.image GBuffer.detail
  $ orv explain --json unwired.json Tone.image GBuffer.detail

The ports are meant that go with each other where an input and an output share a path:

  $ orv explain unwired.json Bloom.image 'Bloom/Blur.source'
  $ orv explain unwired.json 'Bloom/Blur.blurred' Bloom.image
