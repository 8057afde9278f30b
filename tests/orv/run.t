A frame, with all calls:

  $ orv run scene.json
  $ orv run --json clean.json

Several frames end with the same values, as nothing changes:

  $ orv run --frames 3 clean.json

Another value of a parameter changes what follows from it:

  $ orv run --parameter Angle=31 scene.json | grep Picture
  $ orv run --parameter Quality=3 scene.json | grep Picture

A pass that fails ends the frame:

  $ orv run --frames 2 --fail Light=7 scene.json
  $ orv run --fail Light --json scene.json | grep -A 3 '"errorCode": 1'

A slow pass is waited for:

  $ orv run --slow Shadow=20 scene.json | grep Shadow

A disabled pass does not run, and its readers take their defaults:

  $ orv run --disable Light scene.json

The staggered first frame starts a pass a frame:

  $ orv run --frames 4 --staggered clean.json
  $ orv run --frames 1 --parameter Orv_bool_staggeredFirstFrame=false staggered.json | grep -c start
  $ orv run --frames 1 --staggered staggered.json | grep -c skip

No frames:

  $ orv run --frames 0 clean.json

Times go to a file:

  $ orv run --trace trace.json clean.json >/dev/null && python3 -m json.tool trace.json >/dev/null && grep -o '"name": *"[^"]*"' trace.json | sort -u | head -3
  $ orv run --trace missing/trace.json clean.json >/dev/null

Wrong values of options:

  $ orv run --frames -1 scene.json
  $ orv run --frames many scene.json
  $ orv run --slow Shadow scene.json
  $ orv run --slow Shadow=-1 scene.json
  $ orv run --fail Shadow=0 scene.json
  $ orv run --fail Shadow=x scene.json
  $ orv run --fail Nobody scene.json
  $ orv run --disable Bloom scene.json
  $ orv run --disable '' scene.json
  $ orv run --parameter Angle scene.json
  $ orv run --parameter Angel=3 scene.json
  $ orv run --parameter Picture=3 scene.json
  $ orv run --parameter Angle=steep scene.json
  $ orv run --parameter Quality=2.5 scene.json

Parameters of every type are read:

  $ for value in Bool=true Int=-3 UInt=3 Wide=9007199254740993 Float=0.5 Text=a=b Bytes=xyz List='[1,"a"]' Map='{"a":1}' Words='["a","b"]' None=word None=3; do
  >     orv run --parameter "$value" values.json | grep Picture
  > done
  $ for value in Bool=yes Int=x UInt=-1 Float=half List=1 Map='[]' Words='{}'; do
  >     orv run --parameter "$value" values.json
  > done
