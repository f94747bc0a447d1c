# Completion of rowlark for fish.

function __rowlark_names
    command rowlark profiles list 2>/dev/null | string replace --regex '\t.*' ''
end

function __rowlark_encodings
    iconv --list 2>/dev/null | string replace --regex '//.*' ''
end

set --local commands search profiles history
set --local is_first "not __fish_seen_subcommand_from $commands"
set --local in_search "__fish_seen_subcommand_from search"
set --local has_table "not __fish_seen_subcommand_from profiles history"
set --local in_profiles "__fish_seen_subcommand_from profiles; and not __fish_seen_subcommand_from list show set remove"
set --local in_history "__fish_seen_subcommand_from history; and not __fish_seen_subcommand_from list clear"
set --local needs_name "__fish_seen_subcommand_from profiles; and __fish_seen_subcommand_from show set remove"
set --local in_set "__fish_seen_subcommand_from profiles; and __fish_seen_subcommand_from set"
# Where settings can be named: not between "profiles" or "history" and what to do with them.
set --local has_settings "not __fish_seen_subcommand_from profiles history; or __fish_seen_subcommand_from list show set remove clear"

complete -c rowlark -n "not begin; $has_table; end" -f
complete -c rowlark -s h -l help -d "Print a help message"
complete -c rowlark -n $has_settings -l config -r -F -d "Configuration file"
complete -c rowlark -n $has_settings -l language -x -a "@ROWLARK_LANGUAGES@" -d "Language of the messages"

complete -c rowlark -n $is_first -a search -d "Search a table and print the rows that match"
complete -c rowlark -n $is_first -a profiles -d "Settings for the tables of a name"
complete -c rowlark -n $is_first -a history -d "The texts searched for"
complete -c rowlark -n $is_first -l version -d "Print the version"
complete -c rowlark -n $is_first -l follow -d "Keep to the end of files that grow"

complete -c rowlark -n $has_table -l header -x -a "no 1 2" -d "Rows that are the head of the table"
complete -c rowlark -n $has_table -l separator -x -a "tab" -d "What stands between cells"
complete -c rowlark -n $has_table -l encoding -x -a "(__rowlark_encodings)" -d "Encoding of the text"
complete -c rowlark -n $has_table -l memory -x -d "Most that a table may take, in MiB"

complete -c rowlark -n $in_search -l words -x -a "all\t'The text inside a cell' any\t'Any of its words' cell\t'The whole cell'" -d "How the text matches"
complete -c rowlark -n $in_search -l match-case -d "Tell apart upper and lower case"
complete -c rowlark -n $in_search -l go-to -d "Hide nothing, print the address of the cell found"
complete -c rowlark -n $in_search -l range -x -d "Cells to search, like A2:D500"
complete -c rowlark -n $in_search -l columns -x -d "Columns to search, like A,C or by name"
complete -c rowlark -n $in_search -l jump -x -d "Column of the cell to go to"
complete -c rowlark -n $in_search -l filter -x -d "Filter the table first: COLUMN=VALUE"
complete -c rowlark -n $in_search -l sheet -x -d "Sheet of a workbook"
complete -c rowlark -n $in_search -l print -x -a "csv\t'Visible rows' rows\t'Their numbers' json\t'All about the search'" -d "What is printed"
complete -c rowlark -n $in_search -l remember -d "Add a text that is found to the history"

complete -c rowlark -n $in_profiles -a list -d "Print all profiles"
complete -c rowlark -n $in_profiles -a show -d "Print a profile"
complete -c rowlark -n $in_profiles -a set -d "Change a profile, or make one"
complete -c rowlark -n $in_profiles -a remove -d "Remove a profile"
complete -c rowlark -n $needs_name -a "(__rowlark_names)"
complete -c rowlark -n $in_set -l range -x -a auto -d "Cells to search, like A2:D500, or auto"
complete -c rowlark -n $in_set -l columns -x -a all -d "Columns to search, like A,C, or all"
complete -c rowlark -n $in_set -l jump -x -a auto -d "Column of the cell to go to, like C, or auto"
complete -c rowlark -n $in_set -l jump-first-row -x -a "yes no" -d "Show all rows: go to the first one"
complete -c rowlark -n $in_set -l dont-save -x -a "yes no" -d "Hidden rows do not count as changes"

complete -c rowlark -n $in_history -a list -d "Print the texts"
complete -c rowlark -n $in_history -a clear -d "Forget them"
