# bash completion for frontpanel                                                   -*- shell-script -*-

_frontpanel() {
    local options='--help --version --config --menu --script --size --state --screenshot --log --debug --display --charset --input --keys --leds --timeout --no-acceleration --still --pin-file --dump --dump=json --graph --explain --probe --simulate --check'
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} pattern
    COMPREPLY=()
    case $previous in
        --config) pattern='!*.conf' ;;
        --menu) pattern='!*.json' ;;
        --script) pattern='!*.script' ;;
        --screenshot) pattern='!*.svg' ;;
        --log | --state | --pin-file) pattern='' ;;
        --size)
            mapfile -t COMPREPLY < <(compgen -W '16x2 20x2 20x4 24x2 40x2 40x4' -- "$current")
            return
            ;;
        --display)
            # "terminal, text, lcdproc[:IP[:PORT]], ..." of the program's own help
            mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" --help 2>/dev/null |
                sed -nE '/^ +--display /{s/^ +--display [A-Z]+ +//;s/,|\[[^ ]*//g;p}')" -- "$current")
            return
            ;;
        --charset)
            mapfile -t COMPREPLY < <(compgen -W 'a00 a02 iso-8859-1' -- "$current")
            return
            ;;
        --debug | --input | --leds | --keys | --timeout | --explain) return ;;
        *)
            mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
            return
            ;;
    esac
    # Folders stay, whatever the files are called.
    mapfile -t COMPREPLY < <({ compgen -d -- "$current"; compgen -f -X "$pattern" -- "$current"; } | sort -u)
    compopt -o filenames 2>/dev/null
}

complete -F _frontpanel frontpanel
