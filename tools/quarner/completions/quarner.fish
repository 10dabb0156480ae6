# SPDX-License-Identifier: LGPL-2.1-or-later
# Completions of quarner for fish.

# The names of the drives, one a line.
function __quarner_drives
    set -l program (commandline -opc)[1]
    $program drives --json 2>/dev/null |
        string match -rg '^\{"event":"drive","name":"((?:[^"\\\\]|\\\\.)*)"' |
        string replace -ra '\\\\(["\\\\])' '$1'
end

# The folders and the files with one of these extensions (a regular expression).
function __quarner_files
    complete -C "__quarner_any_file "(commandline -ct) | string match -ri "^[^\t]*(?:/|\.(?:$argv[1]))(?:\t.*)?\$"
end

function __quarner_is
    contains -- (commandline -opc)[2] $argv
end

set -l burn '__quarner_is audio data'
set -l all '__quarner_is audio data drives disc eject watch'
set -l first 'not __quarner_is audio data drives disc eject watch'

complete -c quarner -f
complete -c quarner -s h -l help -d 'Describe the program or the command'
complete -c quarner -n $first -l version -d 'Print the version'
complete -c quarner -n $first -a audio -d 'Burn audio files to an audio CD'
complete -c quarner -n $first -a data -d 'Burn audio files as they are to a data CD'
complete -c quarner -n $first -a drives -d 'List the drives and what they can do'
complete -c quarner -n $first -a disc -d 'Show the disc in a drive'
complete -c quarner -n $first -a eject -d 'Eject the disc in a drive'
complete -c quarner -n $first -a watch -d 'Report drives and discs'

complete -c quarner -n '__quarner_is audio' -l image -xka '(__quarner_files cue)' -d 'The image to write'
complete -c quarner -n '__quarner_is data' -l image -xka '(__quarner_files iso)' -d 'The image to write'
complete -c quarner -n '__quarner_is drives disc eject watch' -l image -xka '(__quarner_files "cue|iso")' \
    -d 'The image of a disc'
complete -c quarner -n $all -l drive -xa '(__quarner_drives)' -d 'The drive'
complete -c quarner -n $all -l json -d 'Print one JSON object a line'
complete -c quarner -n $burn -l title -x -d 'The name of the disc'
complete -c quarner -n $burn -l capacity -xa '74 80' -d 'The minutes of the disc of an image'
complete -c quarner -n $burn -l sort -d 'Sort the files by name'
complete -c quarner -n $burn -l recursive -d 'Add the audio files in folders'
complete -c quarner -n $burn -l wait -d 'Wait for a disc that can be burnt'
complete -c quarner -n $burn -l eject -d 'Eject the disc when it is burnt'
complete -c quarner -n $burn -l dry-run -d 'Do everything up to the burn'
complete -c quarner -n $burn -l keep-going -d 'Burn the rest when a file is refused'
complete -c quarner -n $burn -l yes -d 'Burn without asking first'
complete -c quarner -n $burn -l verbose -d 'Show diagnostics'
complete -c quarner -n $burn -ka '(__quarner_files "mp3|m4a|m3u|m3u8|pls|xspf")'
