#!/usr/bin/env zsh
# Prints what zsh offers when Tab is pressed behind a line of words, one a line.
#
#   complete.zsh COMPLETION_FILE LINE
#
# Completion works in the line editor only, so a zsh in a terminal of its own is asked; what it
# would offer goes through compadd, which prints it. The terminal may repeat what is written to it:
# the marks in it are not as they come out.
zmodload zsh/zpty || exit 1
zpty asked zsh -f -i
zpty -w asked "PS1= PS2= RPS1=; stty -echo; autoload -Uz compinit; compinit -D -u; source ${(q)1}"
zpty -w asked 'compadd() {
    local -a found
    builtin compadd -O found "$@"
    (( $#found )) && print -rl -- "off"ered:$^found
    builtin compadd "$@"
}
list() { zle complete-word; print; print -r -- "end"" of offers"; }
zle -C complete-word complete-word _main_complete
zle -N list
bindkey "^T" list'
zpty -w -n asked "$2"$'\x14'
while zpty -r asked line '*'$'\n'; do
    line=${line%%[[:space:]]#}
    case $line in
        *offered:*) print -r -- "${${line##*offered:}%%$'\r'*}" ;;
        *'end of offers'*) break ;;
    esac
done
zpty -d asked
