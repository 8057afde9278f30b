Passes are listed in execution order, with the users of their outputs:

  $ orv order scene.json
  1	GBuffer	color=1	depth=1
  2	Shadow	map=1
  3	Light	image=2
  4	Bloom/Blur[0]	blurred=1
  5	Bloom/Blur[1]	blurred=1
  6	Tone	image=1

The same as JSON, where positions start at 0:

  $ orv order --json scene.json
  {
      "order": [
          {
              "outputs": [
                  {
                      "name": "color",
                      "users": 1
                  },
                  {
                      "name": "depth",
                      "users": 1
                  }
              ],
              "path": "GBuffer",
              "position": 0
          },
          {
              "outputs": [
                  {
                      "name": "map",
                      "users": 1
                  }
              ],
              "path": "Shadow",
              "position": 1
          },
          {
              "outputs": [
                  {
                      "name": "image",
                      "users": 2
                  }
              ],
              "path": "Light",
              "position": 2
          },
          {
              "outputs": [
                  {
                      "name": "blurred",
                      "users": 1
                  }
              ],
              "path": "Bloom/Blur[0]",
              "position": 3
          },
          {
              "outputs": [
                  {
                      "name": "blurred",
                      "users": 1
                  }
              ],
              "path": "Bloom/Blur[1]",
              "position": 4
          },
          {
              "outputs": [
                  {
                      "name": "image",
                      "users": 1
                  }
              ],
              "path": "Tone",
              "position": 5
          }
      ]
  }

A document without passes has an empty order:

  $ echo '{ "format": "orv-graph", "version": 1 }' | orv order
  $ echo '{ "format": "orv-graph", "version": 1 }' | orv order --json
  {
      "order": [
      ]
  }

Names that contain separators are escaped:

  $ orv order odd.json
  1	a%2Fb c	x%253D1=1
