#!/usr/bin/env bash
# Every command and every option of --help is in its manual page and in all completions: check_options.sh MANUAL PROGRAM
set -euo pipefail
manual=$1 program=$2

fail() {
    echo "$*" >&2
    exit 1
}
commands=$("$program" --help | sed -n '/^Commands:/,/^$/{s/^  \([a-z]\+\) .*/\1/p}')
[[ $(wc -w <<<"$commands") -ge 5 ]] || fail "--help names too few commands: $commands"
for command in $commands; do
    page=$manual/man1/zqx-img-$command.1
    [[ -s $page ]] || fail "there is no page $page"
    grep --quiet "fB$command" "$manual/man1/zqx-img.1" || fail "the program's page does not name $command"
    names=$("$program" "$command" --help | sed -n '/^  .*--[a-z]/s/^  \(-[a-zA-Z], \|    \)\(--[a-z-]*\).*/\2/p')
    [[ -n $names ]] || fail "$command --help names no options"
    for name in $names; do
        grep --quiet --fixed-strings -- "${name//-/\\-}\\fR" "$page" || fail "$page does not explain $name"
        grep --quiet "^    $command) options='.*$name[ ']" "$manual/bash/zqx-img" || fail "bash lacks $command $name"
        sed -n "/^        $command)/,/;;/p" "$manual/zsh/_zqx-img" | grep --quiet -- "$name\[" || fail "zsh lacks $command $name"
        grep --quiet -- "from $command' .*-l ${name#--} " "$manual/fish/zqx-img.fish" || fail "fish lacks $command $name"
    done
done
