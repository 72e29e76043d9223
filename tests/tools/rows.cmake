# nqoml_row(name exit-code argument...): the messages that a person sees, run in
# data/. To write an expected output anew, run the row's command there and read
# what it says before keeping it.

set(graph --grammar ../../../examples/data/graph.grammar)

# What goes wrong in files written by hand.
nqoml_row(unknown_field 1 check ${graph} unknown_field.oml)
nqoml_row(wrong_values 1 check ${graph} wrong_values.oml)
nqoml_row(brackets 1 check ${graph} brackets.oml)
nqoml_row(places 1 check ${graph} places.oml)
nqoml_row(meaning 1 check ${graph} meaning.oml)
nqoml_row(unterminated 1 check ${graph} -)
nqoml_row(too_many 1 check ${graph} --max-errors 3 too_many.oml)
nqoml_row(too_deep 1 check ${graph} --max-depth 2 brackets.oml)
nqoml_row(long_line 1 check ${graph} long_line.oml)
nqoml_row(hostile 1 check ${graph} --color always hostile.oml)
nqoml_row(byte_order_mark 1 check ${graph} byte_order_mark.txt)

# Included files.
nqoml_row(include_refused 1 check ${graph} inc/main.oml)
nqoml_row(include_allowed 1 check ${graph} --allow-includes inc/main.oml)

# Other formats, other encodings, several files.
nqoml_row(gcc 1 check ${graph} --format gcc unknown_field.oml brackets.oml)
nqoml_row(json 1 check ${graph} --format json hostile.oml brackets.oml)
nqoml_row(binary 1 check ${graph} binary.bin binary_broken.bin)
nqoml_row(several 2 check ${graph} binary.bin missing.oml too_many.oml . --quiet)

# What keeps the tool from its work.
nqoml_row(grammar 2 check --grammar small.grammar too_many.oml)
nqoml_row(grammar_json 2 check --grammar small.grammar --format json too_many.oml)
nqoml_row(grammar_missing 2 check --grammar missing.grammar too_many.oml)
nqoml_row(no_command 2)
nqoml_row(no_grammar 2 check too_many.oml)
nqoml_row(bad_format 2 check ${graph} --format xml too_many.oml)

# A binary file, whole and damaged, with names and without.
nqoml_row(dump 0 dump ${graph} binary.bin)
nqoml_row(dump_broken 1 dump binary_broken.bin)
nqoml_row(dump_missing 2 dump missing.bin)

# What is written goes to standard output.
nqoml_row(format 0 format -)
nqoml_row(format_diff 1 format --diff --check format.oml)
nqoml_row(convert 0 convert ${graph} --to text binary.bin)
nqoml_row(convert_faulty 1 convert ${graph} --to binary unknown_field.oml)
nqoml_row(keys 0 keys keys.grammar)
nqoml_row(keys_unwritable 2 keys keys.grammar -o missing/keys.h)
