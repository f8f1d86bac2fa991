# Completion of the zucom program for bash. It asks the program itself, so that it never lags behind it.
_zucom()
{
    local program=${COMP_WORDS[0]} command=${COMP_WORDS[1]} word=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD - 1]} words=
    if [ "$COMP_CWORD" -eq 1 ]; then
        words="--help --version $("$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p')"
    elif [[ $word == -* ]]; then
        words=$("$program" "$command" --help | grep -oE -- '--[a-z][a-z0-9-]*')
    elif [[ $previous == -* ]]; then # the values of an option that has a choice, from "--kind TEXT:{standard,advanced}"
        words=$("$program" "$command" --help | sed -n "/[ ,]${previous}[ ,]/s/.*:{\([^}]*\)}.*/\1/p" | tr ',' ' ')
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _zucom zucom
