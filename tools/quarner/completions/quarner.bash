# SPDX-License-Identifier: LGPL-2.1-or-later
# Completions of quarner for bash.

# The names of the drives, one a line.
_quarner_drives() {
    local line name='^\{"event":"drive","name":"(([^"\\]|\\.)*)"'
    while IFS= read -r line; do
        [[ $line =~ $name ]] || continue
        line=${BASH_REMATCH[1]//\\\"/\"}
        printf '%s\n' "${line//\\\\/\\}"
    done < <("$1" drives --json 2>/dev/null)
}

# The folders and the files with one of these extensions (a regular expression) that the word begins.
_quarner_files() {
    local file
    compopt -o filenames 2>/dev/null
    while IFS= read -r file; do
        [[ -d ${file/#\~/$HOME} || ${file,,} =~ \.($2)$ ]] && COMPREPLY+=("$file")
    done < <(compgen -f -- "$1")
}

# Those of the other arguments that the word, the first one, begins. readline quotes them.
_quarner_names() {
    local name
    compopt -o filenames 2>/dev/null
    for name in "${@:2}"; do
        [[ $name == "$1"* ]] && COMPREPLY+=("$name")
    done
}

_quarner() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' image='' options i names
    # --image=FILE is three words.
    [[ $word != = ]] || word=''
    [[ $previous != = ]] || previous=${COMP_WORDS[COMP_CWORD - 2]}
    for ((i = 1; i < COMP_CWORD; ++i)); do
        [[ ${COMP_WORDS[i]} != -- ]] || previous=--
        [[ -n $command || ${COMP_WORDS[i]} == -* ]] || command=${COMP_WORDS[i]}
    done
    COMPREPLY=()

    case $command in
        '')
            options='-h --help --version'
            [[ $word == -* ]] || options='audio data drives disc eject watch' ;;
        audio | data)
            image=cue
            [[ $command == audio ]] || image=iso
            options='-h --help --image --drive --title --capacity --sort --recursive --wait --eject
                     --dry-run --keep-going --yes --verbose --json' ;;
        drives | disc | eject | watch)
            image='cue|iso'
            options='-h --help --image --drive --json' ;;
        *) return ;;
    esac

    # Without the quotes that were typed.
    local plain=$word
    case $word in
        [\"\']*) plain=${word:1} ;;
        *) plain=${word//\\/} ;;
    esac
    case $previous in
        --image) _quarner_files "$plain" "$image" ;;
        --drive)
            mapfile -t names < <(_quarner_drives "$1")
            _quarner_names "$plain" "${names[@]}" ;;
        --capacity) mapfile -t COMPREPLY < <(compgen -W '74 80' -- "$word") ;;
        --title) ;;
        *)
            if [[ -z $command || $word == -* && $previous != -- ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
            elif [[ $command == audio || $command == data ]]; then
                _quarner_files "$plain" 'mp3|m4a|m3u|m3u8|pls|xspf'
            fi ;;
    esac
}

complete -F _quarner quarner
