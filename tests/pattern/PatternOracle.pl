# Reads pairs of pattern and text, one a line, in hexadecimal digits with a blank between them. Answers each with a line:
# 1 match, 0 none, E refused or given up, P broken down by a fault of its own. Perl knows \Q...\E in program text only, so that they are resolved here; newer ones refuse a
# brace that begins no count where older ones took it for itself, so that it is escaped.
use strict;
no warnings;

my $piece = qr/ (\(\?\#[^)]*\)) | \\Q(.*?)(?:\\E|\z) | (\{)(?!\d+(?:,\d*)?\}) | (\\.|.) /sx;

sub resolved {
    my ($pattern) = @_;
    my $source = "";
    while ($pattern =~ /\G$piece/gc) {
        $source .= defined $2 ? quotemeta($2) : defined $3 ? "\\$3" : defined $1 ? $1 : $4;
    }
    return $source;
}

my ($last, $compiled) = ("-", undef);
while (my $line = <STDIN>) {
    chomp $line;
    my ($pattern, $text) = split / /, $line, -1;
    if ($pattern ne $last) {
        $last = $pattern;
        my $source = resolved(pack("H*", $pattern));
        # The second alternative, which never matches, keeps Perl (5.36) from a wrong guess at how every match must begin:
        # it finds no match of (?=x?)\w in "a". It also keeps an empty pattern from meaning the last one that matched.
        $compiled = eval { qr/$source|(?!)/sa };
    }
    my $found = defined $compiled ? eval { pack("H*", $text) =~ $compiled ? 1 : 0 } : undef;
    print defined $found ? $found : $@ =~ /^panic/ ? "P" : "E", "\n";
}
