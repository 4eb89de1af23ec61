# Completions of tavrix-inspect for fish.
complete -c tavrix-inspect -l json -d 'One JSON object a line for each file'
complete -c tavrix-inspect -l thorough -d 'Also what takes seconds'
complete -c tavrix-inspect -l export -x -a wav -d 'Write the sound as a WAVE file'
complete -c tavrix-inspect -s o -l output -r -F -d 'Name of the WAVE file'
complete -c tavrix-inspect -l system -d 'What a report of a problem needs'
complete -c tavrix-inspect -l full-paths -d 'Paths in full'
complete -c tavrix-inspect -s h -l help -d 'Show a short description'
complete -c tavrix-inspect -l version -d 'Show the version'
