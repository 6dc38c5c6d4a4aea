// Reads Android.bp with the platform's own parser and prints its one module as JSON: the kind under "kind", and
// every property under its name.
//
//	go run read_android_bp.go ANDROID_BP
package main

import (
	"encoding/json"
	"fmt"
	"os"

	"github.com/google/blueprint/parser"
)

func fail(err interface{}) {
	fmt.Fprintln(os.Stderr, err)
	os.Exit(1)
}

// valueOf is what JSON has in place of a value; other kinds of values have no place in this file.
func valueOf(expression parser.Expression) interface{} {
	switch value := expression.Eval().(type) {
	case *parser.String:
		return value.Value
	case *parser.Bool:
		return value.Value
	case *parser.List:
		values := []interface{}{}
		for _, each := range value.Values {
			values = append(values, valueOf(each))
		}
		return values
	}
	fail(fmt.Sprintf("%s: neither text nor truth value nor list", expression.Pos()))
	return nil
}

func main() {
	file, err := os.Open(os.Args[1])
	if err != nil {
		fail(err)
	}
	tree, errs := parser.ParseAndEval(os.Args[1], file, parser.NewScope(nil))
	if len(errs) > 0 {
		fail(errs[0])
	}
	if len(tree.Defs) != 1 {
		fail(fmt.Sprintf("%s: %d definitions instead of one module", os.Args[1], len(tree.Defs)))
	}
	module, isModule := tree.Defs[0].(*parser.Module)
	if !isModule {
		fail(fmt.Sprintf("%s: no module", os.Args[1]))
	}
	properties := map[string]interface{}{"kind": module.Type}
	for _, property := range module.Properties {
		if _, twice := properties[property.Name]; twice {
			fail(fmt.Sprintf("%s: property %s a second time", property.NamePos, property.Name))
		}
		properties[property.Name] = valueOf(property.Value)
	}
	encoder := json.NewEncoder(os.Stdout)
	encoder.SetEscapeHTML(false)
	encoder.SetIndent("", " ")
	if err := encoder.Encode(properties); err != nil {
		fail(err)
	}
}
