# Completions of tavrix-batch for fish.
complete -c tavrix-batch -l format -x -a '0\tMPEG-4 1\tH.264 2\trewrapped 3\t"QuickTime copy" 4\t"Apple Intermediate" 5\tProRes' -d 'Output format'
complete -c tavrix-batch -l output -x -a '(__fish_complete_directories)' -d 'Destination'
complete -c tavrix-batch -l existing -x -a 'replace keep ask' -d 'What to do with an output that exists'
complete -c tavrix-batch -l json -d 'One JSON object a line instead of text'
complete -c tavrix-batch -l system -d 'What a report of a problem needs'
complete -c tavrix-batch -s h -l help -d 'Show a short description'
complete -c tavrix-batch -l version -d 'Show the version'
