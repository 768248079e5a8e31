# bash completion for kelmasn: subcommands, their options, record types and code sets.
_kelmasn() {
    local cur prev words cword
    cur=${COMP_WORDS[COMP_CWORD]}
    prev=${COMP_WORDS[COMP_CWORD - 1]}
    local subcommands="der types decode encode inspect check canon diff craft sample str schema help"
    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W "$subcommands --help --version" -- "$cur"))
        return
    fi
    local subcommand=${COMP_WORDS[1]}
    case $prev in
        --type)
            COMPREPLY=($(compgen -W "auto $(kelmasn types 2>/dev/null | cut -d' ' -f1)" -- "$cur"))
            return ;;
        --from | --to)
            COMPREPLY=($(compgen -W "ia5 t61 bmp ucs4 utf8 printable visible" -- "$cur"))
            return ;;
        --color)
            COMPREPLY=($(compgen -W "auto always never" -- "$cur"))
            return ;;
        --in-format)
            COMPREPLY=($(compgen -W "raw hex base64" -- "$cur"))
            return ;;
        -o | --output)
            COMPREPLY=($(compgen -f -- "$cur"))
            return ;;
        --version | --header-version | --truncate | --constructed-strings)
            return ;;
    esac
    local options=""
    case $subcommand in
        der) options="--in-format --help" ;;
        decode) options="--lcs --version --allow-trailing --in-format --help" ;;
        encode) options="-o --output --lcs --version --strict --help" ;;
        inspect | check) options="--type --in-format --help" ;;
        canon) options="-o --output --type --in-format --help" ;;
        diff) options="--type --in-format --help" ;;
        craft) options="--type -o --output --indefinite --long-lengths --constructed-strings \
--header-version --truncate --help" ;;
        sample) options="--minimal --full --help" ;;
        str) options="--from --to --hex-in --hex-out --help" ;;
        help) COMPREPLY=($(compgen -W "$subcommands" -- "$cur")); return ;;
        *) options="--help" ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options --color" -- "$cur"))
        return
    fi
    # TYPE is the first word after decode, encode, sample and schema; the rest are files.
    if [ "$COMP_CWORD" -eq 2 ] && [[ $subcommand == decode || $subcommand == encode ||
        $subcommand == sample || $subcommand == schema ]]; then
        COMPREPLY=($(compgen -W "$( [ "$subcommand" = decode ] && echo auto) \
$(kelmasn types 2>/dev/null | cut -d' ' -f1)" -- "$cur"))
        return
    fi
    COMPREPLY=($(compgen -f -- "$cur"))
}
complete -o filenames -F _kelmasn kelmasn
