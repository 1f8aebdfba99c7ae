#!/bin/bash
# Follows docs/making-a-show.md word by word: its commands are run one after the other, in a home of their own. A block
# behind <!-- not run ... --> is left out, as is one behind <!-- needs PROGRAM --> where there is no such program.
# The saver runs on a virtual display and is ended after some seconds: it must still be there then, and have found
# nothing wrong.
# making_a_show.sh BIN_FOLDER SOURCE_FOLDER
set -euo pipefail
bin=$1
source=$2
HOME=$(mktemp -d)
export HOME
unset XDG_CONFIG_HOME TAMBLOR_DATA
trap 'kill "${server-}" 2>/dev/null || true; rm -rf "$HOME"' EXIT

awk '
    /^<!-- not run/ { skip = 1 }
    /^<!-- needs / { needs = $3 }
    /^```sh$/ { inside = 1; if (needs) print "if command -v " needs " >/dev/null; then"; next }
    /^```$/ { if (inside && needs) print "fi"; if (inside) skip = needs = ""; inside = 0; next }
    inside && !skip { print }
' "$source/docs/making-a-show.md" >"$HOME/commands"
[ "$(grep -c '^tamb-pack' "$HOME/commands")" -ge 8 ] || { echo "the page has lost its commands"; exit 1; }

mkdir "$HOME/bin"
cat >"$HOME/bin/tamblor" <<END
#!/bin/bash
LIBGL_ALWAYS_SOFTWARE=1 timeout --signal=TERM 5 "$bin/tamblor" "\$@" && status=0 || status=\$?
echo "tamblor: ended with \$status"
[ \$status -eq 124 ] || exit 1
grep -q 'loading ok' "\$TAMBLOR_DATA/tamb.log" || exit 1
! grep '#ERROR' "\$TAMBLOR_DATA/tamb.log"
END
chmod +x "$HOME/bin/tamblor"
coproc SERVER { exec Xvfb -displayfd 1 -screen 0 640x480x24 -nolisten tcp 2>/dev/null; }
server=$SERVER_PID
read -r -t 20 number <&"${SERVER[0]}"
export DISPLAY=:$number PATH="$HOME/bin:$bin:$PATH"

cd "$HOME"
bash -euxo pipefail commands
cd my-show
for made in look.png back.png tamb.dat tamb.log; do
    [ -s "$made" ] || { echo "$made was not made"; exit 1; }
done
tamb-pack list tamb.dat >"$HOME/list"
for entry in '18  tga .* 512 x 256, RGB' '4  model .* "gem"' '72  animation .* 4 key frames'; do
    grep -q " $entry" "$HOME/list" || { echo "there is no entry '$entry'"; exit 1; }
done
