complete -c ambertide -f
complete -c ambertide -n __fish_use_subcommand -a set -d 'Tint every display'
complete -c ambertide -n __fish_use_subcommand -a get -d 'Print the present temperature'
complete -c ambertide -n __fish_use_subcommand -s h -l help -d 'Show how it is used'
complete -c ambertide -n __fish_use_subcommand -l version -d 'Show the version'
complete -c ambertide -n '__fish_seen_subcommand_from set' -a '1000 1900 2700 3400 4200 5500 6500' -d kelvin
