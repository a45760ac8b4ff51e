# tools/orbprops/completion/orbprops.fish: completion of orbprops for fish.

set -l commands report get keys filesystems interfaces users

complete -c orbprops -f
complete -c orbprops -s j -l json -d 'Print a JSON document'
complete -c orbprops -s t -l timing -d 'Tell how long each collector took'
complete -c orbprops -s s -l strict -d 'Fail when a property could not be collected'
complete -c orbprops -s v -l verbose -d 'Print diagnostic lines on standard error'
complete -c orbprops -s V -l version -d 'Print the version'
complete -c orbprops -s h -l help -d 'Print a summary'
complete -c orbprops -s l -l loopback -n '__fish_seen_subcommand_from interfaces' \
    -d 'Loopback too'

complete -c orbprops -n "not __fish_seen_subcommand_from $commands" -a report \
    -d 'All properties and the file systems'
complete -c orbprops -n "not __fish_seen_subcommand_from $commands" -a get \
    -d 'The values of properties'
complete -c orbprops -n "not __fish_seen_subcommand_from $commands" -a keys \
    -d 'The keys that get answers'
complete -c orbprops -n "not __fish_seen_subcommand_from $commands" -a filesystems \
    -d 'The local file systems'
complete -c orbprops -n "not __fish_seen_subcommand_from $commands" -a interfaces \
    -d 'The network interfaces'
complete -c orbprops -n "not __fish_seen_subcommand_from $commands" -a users \
    -d 'The logged-on users'
complete -c orbprops -n '__fish_seen_subcommand_from get' -a '(orbprops keys 2>/dev/null)'
