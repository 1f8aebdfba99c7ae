#!/bin/bash
# The manual page and bash's completion, held to what the program itself says that it knows.
# words.sh TAMBLOR SOURCE_FOLDER
set -euo pipefail
tamblor=$1
manual=$2/packaging/linux/tamblor.6.in
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$*" && exit 1; }

# Options and settings, as the program lists them.
options=$("$tamblor" --help | sed -n 's/^  \(--[a-z-]*\).*/\1/p')
mkdir -p "$work/tamblor"
echo 'no_such_setting = 1' >"$work/tamblor/tamblor.conf"
where=$(env -u DISPLAY XDG_CONFIG_HOME="$work" "$tamblor" --where) || true # it has a problem, as it should
settings=$(sed -n 's/.*no_such_setting.*there are: \([^)]*\)).*/\1/p' <<<"$where" | tr -d ,)
[[ $options == *--where* && $settings == *path* ]] || fail "the program lists no options or no settings: $options $settings"

# Each has a paragraph of its own, which begins with its name.
paragraphs=$(grep -A1 '^\.TP' "$manual" | sed 's/\\-/-/g')
for option in $options; do
    grep -Eq -- "^\.B[IR]? $option( |\$)" <<<"$paragraphs" || fail "the manual page has no paragraph for $option"
done
for setting in $settings; do
    grep -q "^\.BI \"$setting = \"" <<<"$paragraphs" || fail "the manual page has no paragraph for the setting $setting"
done
# And the page names nothing else.
for option in $(sed -En 's/^\.B[IR]? (--[a-z-]+).*/\1/p' <<<"$paragraphs"); do
    grep -qx -- "$option" <<<"$options" || fail "the manual page has $option, which the program does not know"
done
for setting in $(sed -n 's/^\.BI "\([a-z_]*\) = ".*/\1/p' <<<"$paragraphs"); do
    [[ " ${settings//$'\n'/ } " == *" $setting "* ]] || fail "the manual page has the setting $setting, which the program does not know"
done

source "$2/packaging/linux/tamblor.bash-completion"
# offered WORD...: what is offered for the last word, sorted, in one line
offered() {
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    _tamblor "$program"
    printf '%s\n' "${COMPREPLY[@]}" | sort | xargs
}
expect() {
    local wanted=$1
    shift
    [ "$(offered "$@")" = "$wanted" ] || fail "completing '$*' offers '$(offered "$@")', not '$wanted'"
}
program=$tamblor
expect "$(sort <<<"$options" | xargs)" --
expect '/c /p /s' /
expect '--where' --wh

# Values, with a program of the test's own that has each kind.
program=$work/program
cat >"$program" <<'END'
#!/bin/sh
echo 'switches:
  /s            the show
options:
  --colour=on|off  two words to choose from
  --maybe[=all]    a word, or none
  --number=NUMBER  the user thinks of it
  --plain'
END
chmod +x "$program"
expect 'off on' --colour ''
expect 'on' --colour = on
expect 'off on' --colour =
expect 'all' --maybe = a
expect '' --number ''
expect '' --number --
expect '/s' --plain ''
expect '--colour --maybe --number --plain' --plain --
rm "$program"
expect '' --
