A frame with all calls:

  $ orv run scene.json
  setup
    GBuffer: setup
    Shadow: setup
    Light: setup
    Bloom/Blur[0]: setup
    Bloom/Blur[1]: setup
    Tone: setup
  frame 1
    GBuffer: beginFrame start endFrame
    Shadow: beginFrame start endFrame
    Light: beginFrame start endFrame
    Bloom/Blur[0]: beginFrame start endFrame
    Bloom/Blur[1]: beginFrame start endFrame
    Tone: beginFrame start endFrame
    Picture = 3761834016
  teardown
    Shadow: teardown
    GBuffer: teardown
    Light: teardown
    Bloom/Blur[0]: teardown
    Bloom/Blur[1]: teardown
    Grain: teardown
    Tone: teardown
    Overlay: teardown
  $ orv run --json clean.json
  {
      "frames": [
          {
              "calls": [
                  {
                      "calls": [
                          "beginFrame",
                          "start",
                          "endFrame"
                      ],
                      "errorCode": 0,
                      "pass": "Geometry"
                  },
                  {
                      "calls": [
                          "beginFrame",
                          "start",
                          "endFrame"
                      ],
                      "errorCode": 0,
                      "pass": "Tone"
                  }
              ],
              "frame": 1,
              "outputs": [
                  {
                      "output": "Picture",
                      "value": 117849884
                  }
              ],
              "succeeded": true
          }
      ],
      "setup": [
          {
              "calls": [
                  "setup"
              ],
              "errorCode": 0,
              "pass": "Geometry"
          },
          {
              "calls": [
                  "setup"
              ],
              "errorCode": 0,
              "pass": "Tone"
          }
      ],
      "teardown": [
          {
              "calls": [
                  "teardown"
              ],
              "errorCode": 0,
              "pass": "Geometry"
          },
          {
              "calls": [
                  "teardown"
              ],
              "errorCode": 0,
              "pass": "Tone"
          }
      ]
  }

Frames end with the same values if nothing changes:

  $ orv run --frames 3 clean.json | grep Picture
    Picture = 117849884
    Picture = 117849884
    Picture = 117849884

A different value of a parameter changes the values downstream:

  $ orv run --parameter Angle=31 scene.json | grep Picture
    Picture = 901500245
  $ orv run --parameter Quality=3 scene.json | grep Picture
    Picture = 3761834016

A pass that fails ends the frame:

  $ orv run --frames 2 --fail Light=7 scene.json
  setup
    GBuffer: setup
    Shadow: setup
    Light: setup
    Bloom/Blur[0]: setup
    Bloom/Blur[1]: setup
    Tone: setup
  frame 1 failed
    GBuffer: beginFrame start endFrame
    Shadow: beginFrame start endFrame
    Light: beginFrame start endFrame, error code 7
    Picture has no value
  frame 2 failed
    GBuffer: beginFrame start endFrame
    Shadow: beginFrame start endFrame
    Light: beginFrame start endFrame, error code 7
    Picture has no value
  teardown
    Shadow: teardown
    GBuffer: teardown
    Light: teardown
    Bloom/Blur[0]: teardown
    Bloom/Blur[1]: teardown
    Grain: teardown
    Tone: teardown
    Overlay: teardown
  ? 1
  $ orv run --fail Light --json scene.json | grep -A 3 '"errorCode": 1'
                      "errorCode": 1,
                      "pass": "Light"
                  }
              ],

The renderer waits for a slow pass:

  $ orv run --slow Shadow=20 scene.json | grep Shadow
    Shadow: setup
    Shadow: beginFrame start wait endFrame
    Shadow: teardown

A disabled pass does not run, and its readers use their defaults:

  $ orv run --disable Light scene.json | sed '/^teardown/,$d'
  setup
    GBuffer: setup
    Shadow: setup
    Bloom/Blur[0]: setup
    Bloom/Blur[1]: setup
    Tone: setup
  frame 1
    GBuffer: beginFrame start endFrame
    Shadow: beginFrame start endFrame
    Bloom/Blur[0]: beginFrame start endFrame
    Bloom/Blur[1]: beginFrame start endFrame
    Tone: beginFrame start endFrame
    Picture = 1139561967

The staggered first frame starts one new pass per frame:

  $ orv run --frames 4 --staggered clean.json | sed '1,/^frame 1/d; /^teardown/,$d'
    Geometry: beginFrame start endFrame
    Tone: beginFrame skip endFrame
    Picture has no value
  frame 2
    Geometry: beginFrame start endFrame
    Tone: beginFrame start endFrame
    Picture = 117849884
  frame 3
    Geometry: beginFrame start endFrame
    Tone: beginFrame start endFrame
    Picture = 117849884
  frame 4
    Geometry: beginFrame start endFrame
    Tone: beginFrame start endFrame
    Picture = 117849884
  $ orv run --frames 1 --parameter Orv_bool_staggeredFirstFrame=false staggered.json | grep -c start
  2
  $ orv run --frames 1 --staggered staggered.json | grep -c skip
  1

No frames:

  $ orv run --frames 0 clean.json
  setup
    Geometry: setup
    Tone: setup
  teardown
    Geometry: teardown
    Tone: teardown

The times of all calls are written to a file:

  $ orv run --trace trace.json clean.json >/dev/null && python3 -m json.tool trace.json >/dev/null && grep -o '"name": *"[^"]*"' trace.json | sort -u | head -3
  "name":"Geometry beginFrame"
  "name":"Geometry endFrame"
  "name":"Geometry setup"
  $ orv run --trace missing/trace.json clean.json >/dev/null
  ! orv: cannot write "missing/trace.json": No such file or directory
  ? 2

Invalid values of options:

  $ orv run --frames -1 scene.json
  ! orv run: option --frames needs a number from 0 to 1000000, not "-1" (see orv help run)
  ? 2
  $ orv run --frames many scene.json
  ! orv run: option --frames needs a number from 0 to 1000000, not "many" (see orv help run)
  ? 2
  $ orv run --slow Shadow scene.json
  ! orv run: option --slow needs PASS=MS, not "Shadow" (see orv help run)
  ? 2
  $ orv run --slow Shadow=-1 scene.json
  ! orv run: option --slow needs PASS=MS, not "Shadow=-1" (see orv help run)
  ? 2
  $ orv run --fail Shadow=0 scene.json
  ! orv run: option --fail needs PASS or PASS=CODE with a code of at least 1, not "Shadow=0" (see orv help run)
  ? 2
  $ orv run --fail Shadow=x scene.json
  ! orv run: option --fail needs PASS or PASS=CODE with a code of at least 1, not "Shadow=x" (see orv help run)
  ? 2
  $ orv run --fail Nobody scene.json
  ! scene.json: unknown-name: there is no node "Nobody"
  ? 2
  $ orv run --disable Bloom scene.json
  ! scene.json: no-pass: Bloom is not a pass
  ? 2
  $ orv run --disable '' scene.json
  ! scene.json: no-pass: the renderer is not a pass
  ? 2
  $ orv run --parameter Angle scene.json
  ! orv run: option --parameter needs NAME=VALUE, not "Angle" (see orv help run)
  ? 2
  $ orv run --parameter Angel=3 scene.json
  ! scene.json: unknown-name: there is no parameter "Angel"; did you mean Angle?
  ? 2
  $ orv run --parameter Picture=3 scene.json
  ! scene.json: no-parameter: Picture is not a parameter
  ? 2
  $ orv run --parameter Angle=steep scene.json
  ! scene.json: bad-value: Angle needs a value of type double, not "steep"
  ? 2

A value on the command line has the same effect as in the document, for every type:

  $ written() { sed "s/\"name\": \"$1\", \(.*\)\"value\": .* }/\"name\": \"$1\", \1\"value\": $2 }/" values.json | orv run; }
  > same() { [ "$(orv run --parameter "$1=$2" values.json)" = "$(written "$1" "$3")" ] || echo "$1 differs"; }
  > same Bool true true; same Int -3 -3; same UInt 4294967295 4294967295; same Float 0.5 0.5
  > same Wide 9007199254740993 '"9007199254740993"'; same Text a=b '"a=b"'; same Text '' '""'
  > same List '[]' '[]'; same Map '{}' '{}'; same Words '["a","b"]' '["a","b"]'
  > same Int 4 5
  Int differs

A value of another type is refused:

  $ for value in Bool=yes Int=x Int=2.5 UInt=-1 Float=half List=1 Map='[]' Words='{}'; do
  >     orv run --parameter "$value" values.json
  > done
  ! values.json: bad-value: Bool needs a value of type bool, not "yes"
  ! values.json: bad-value: Int needs a value of type int, not "x"
  ! values.json: bad-value: Int needs a value of type int, not "2.5"
  ! values.json: bad-value: UInt needs a value of type uint, not "-1"
  ! values.json: bad-value: Float needs a value of type float, not "half"
  ! values.json: bad-value: List needs a value of type QVariantList, not "1"
  ! values.json: bad-value: Map needs a value of type QVariantMap, not "[]"
  ! values.json: bad-value: Words needs a value of type QStringList, not "{}"
  ? 2

A parameter without a value accepts JSON and any other text:

  $ for value in None=word None=3 None='{"a":1}'; do orv run --parameter "$value" values.json | grep Picture; done | uniq | wc -l
  3
